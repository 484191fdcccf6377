#include "tembrakey/io/console.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tembrakey/platform/streams.h"
#include "tembrakey/platform/terminal.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

void print(std::FILE *stream, const std::string &line) {
    std::fwrite(line.data(), 1, line.size(), stream);
    std::fputc('\n', stream);
}

// Bytes that are not UTF-8 become replacement characters.
std::string textOf(const Json &object) {
    return object.dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace

void Console::result(const Json &object, const std::string &text) const {
    print(platform::standardOutput(), m_json ? textOf(object) : text);
}

void Console::write(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), platform::standardOutput());
}

void Console::note(const std::string &text) const {
    if (!m_json)
        print(stderr, text);
}

void Console::error(const Failure &failure) const {
    std::fflush(platform::standardOutput());
    if (!m_json) {
        print(stderr, std::string("tembrakey: ") + failure.what());
        return;
    }
    Json error = {{"error", failure.what()}, {"exitCode", static_cast<int>(failure.code())}};
    if (!failure.entryPoint().empty()) {
        error["entryPoint"] = failure.entryPoint();
        error["result"] = failure.result();
    }
    print(stderr, textOf(error));
}

void Console::requireConsent(bool yes, const std::string &question) const {
    if (yes)
        return;
    if (!platform::isTerminal(stdin) || !platform::isTerminal(stderr))
        throw Failure(ExitCode::usage,
                      tr("{1} There is no terminal to ask at: use --yes", {question}));
    const auto answer = platform::askAtTerminal(question + " " + tr("[y/N]") + " ", false);
    if (!answer || (answer->c_str()[0] != 'y' && answer->c_str()[0] != 'Y'))
        throw Failure(ExitCode::failure, tr("nothing was deleted"));
}

void Console::finish() const {
    std::FILE *stream = platform::standardOutput();
    if (std::fflush(stream) != 0 || std::ferror(stream))
        throw Failure(ExitCode::inputOutput,
                      tr("cannot write to standard output: {1}", {std::strerror(errno)}));
}

} // namespace tembra::tool
