#include "tembrakey/io/pin_input.h"

#include <cstdio>

#include "tembrakey/cli/failure.h"
#include "tembrakey/platform/files.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/platform/terminal.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

constexpr std::size_t LONGEST = 1024; // far beyond what tokens take

// A line under construction, wiped whatever happens.
struct Line {
    char text[LONGEST] = {};
    ~Line() { crypto::wipe(text, sizeof text); }
};

SecretText fromDescriptor(int descriptor) {
    Line line;
    std::size_t used = 0;
    for (char c = 0; used < LONGEST - 1; line.text[used++] = c) {
        const int count = platform::readDescriptor(descriptor, &c, 1);
        if (count < 0)
            throw Failure(ExitCode::inputOutput, tr("Cannot read a PIN from descriptor {1}",
                                                    {std::to_string(descriptor)}));
        if (count == 0 || c == '\n')
            break;
    }
    if (used > 0 && line.text[used - 1] == '\r')
        --used;
    return SecretText(std::string_view(line.text, used));
}

SecretText fromEnvironment(const std::string &variable) {
    auto value = platform::environment(variable);
    if (!value)
        throw Failure(ExitCode::usage, tr("The environment variable {1} is not set", {variable}));
    std::string &characters = *value;
    SecretText text(characters);
    crypto::wipe(characters.data(), characters.size());
    return text;
}

SecretText fromPrompt(const std::string &prompt) {
    std::fprintf(stderr, "%s: ", prompt.c_str());
    std::fflush(stderr);
    Line line;
    if (!platform::readTerminalLine(line.text, LONGEST, true))
        throw Failure(ExitCode::inputOutput, tr("No PIN was entered"));
    return SecretText(line.text);
}

} // namespace

void PinSource::describe(Arguments &arguments, const char *alias) {
    std::string variable = "--" + std::string(m_name) + "-env";
    std::string descriptor = "--" + std::string(m_name) + "-fd";
    if (alias != nullptr) {
        variable += ",--" + std::string(alias) + "-env";
        descriptor += ",--" + std::string(alias) + "-fd";
    }
    arguments
        .text((variable + " NAME").c_str(), m_variable,
              tr("{1} from an environment variable", {tr(m_what)}).c_str())
        .number((descriptor + " N").c_str(), m_descriptor,
                tr("{1} from a line of an open file descriptor", {tr(m_what)}).c_str(), 0, 65535)
        .excludes(variable.substr(0, variable.find(',')).c_str());
}

bool PinSource::available() const {
    return given() || platform::isTerminal(stdin);
}

SecretText PinSource::read() const {
    if (!m_variable.empty())
        return fromEnvironment(m_variable);
    if (m_descriptor >= 0)
        return fromDescriptor(m_descriptor);
    if (platform::isTerminal(stdin))
        return fromPrompt(tr(m_what));
    throw Failure(
        ExitCode::usage,
        tr("There is no terminal to ask for the PIN: use --{1}-env NAME or --{1}-fd N", {m_name}));
}

SecretText PinSource::readNew() const {
    SecretText pin = read();
    if (!given() && !(fromPrompt(tr("{1} again", {tr(m_what)})) == pin))
        throw Failure(ExitCode::usage, tr("The two PINs differ"));
    return pin;
}

} // namespace tembra::tool
