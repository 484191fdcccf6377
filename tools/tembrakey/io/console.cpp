#include "tembrakey/io/console.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tembrakey/platform/terminal.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

void print(std::FILE *stream, const std::string &line) {
    std::fwrite(line.data(), 1, line.size(), stream);
    std::fputc('\n', stream);
}

} // namespace

void Console::result(const Record &record, const std::string &text) const {
    print(stdout, m_json ? toJson(record) : text);
}

void Console::write(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void Console::note(const std::string &text) const {
    if (!m_json)
        print(stderr, text);
}

void Console::error(const Failure &failure) const {
    std::fflush(stdout);
    if (!m_json) {
        print(stderr, std::string("tembrakey: ") + failure.what());
        return;
    }
    Record error;
    error.add("error", failure.what()).add("exitCode", static_cast<int>(failure.code()));
    if (!failure.entryPoint().empty())
        error.add("entryPoint", failure.entryPoint()).add("result", failure.result());
    print(stderr, toJson(error));
}

bool Console::confirms(const std::string &question) const {
    if (!platform::isTerminal(stdin))
        return true;
    std::fprintf(stderr, "%s %s ", question.c_str(), tr("[y/N]"));
    std::fflush(stderr);
    char answer[16];
    return platform::readTerminalLine(answer, sizeof answer, false) &&
           (answer[0] == 'y' || answer[0] == 'Y');
}

void Console::finish() const {
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        throw Failure(ExitCode::inputOutput,
                      tr("Cannot write to standard output: {1}", {std::strerror(errno)}));
}

} // namespace tembra::tool
