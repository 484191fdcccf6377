#include "tembrakey/io/secret_text.h"

#include "tembrakey/io/failure.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/platform/streams.h"
#include "tembrakey/platform/terminal.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

SecretText secretFromDescriptor(int descriptor) {
    constexpr std::size_t longest = 1023; // far beyond what tokens take
    crypto::SecretBytes line;
    for (char c = 0; line.size() < longest;) {
        const int count = platform::readDescriptor(descriptor, &c, 1);
        if (count < 0)
            throw Failure(ExitCode::inputOutput, tr("cannot read a PIN from descriptor {1}",
                                                    {std::to_string(descriptor)}));
        if (count == 0 || c == '\n')
            break;
        line.push_back(static_cast<std::uint8_t>(c));
    }
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return SecretText(crypto::asText(line));
}

SecretText secretFromEnvironment(const std::string &variable) {
    auto value = platform::environment(variable);
    if (!value)
        throw Failure(ExitCode::usage, tr("the environment variable {1} is not set", {variable}));
    SecretText text(*value);
    crypto::wipe(value->data(), value->size());
    return text;
}

SecretText secretFromPrompt(const std::string &prompt) {
    auto line = platform::askAtTerminal(prompt + ": ", true);
    if (!line)
        throw Failure(ExitCode::inputOutput, tr("no PIN was entered"));
    SecretText text(*line);
    crypto::wipe(line->data(), line->size());
    return text;
}

} // namespace tembra::tool
