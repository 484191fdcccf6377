#include "trace_capture.h"

#include "process_environment.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>

namespace tembra::test {
namespace {

bool isHex(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

// "1234 2024-01-31 12:00:00 [INFO] [DeviceInit] message ", without its newline.
bool parseLine(const std::string &text, TraceLine &line) {
    char level[16], function[128];
    int end = 0;
    std::sscanf(text.c_str(), "%*d %*4d-%*2d-%*2d %*2d:%*2d:%*2d [%15[A-Z]] [%127[^]]]%n", level,
                function, &end);
    const auto message = static_cast<std::size_t>(end) + 1;
    if (end == 0 || text.size() <= message || text[message - 1] != ' ' || text.back() != ' ')
        return false;
    line = {level, function, text.substr(message, text.size() - 1 - message)};
    return true;
}

std::size_t runOf(const std::string &text, std::size_t at, bool (*belongs)(char)) {
    std::size_t length = 0;
    while (at + length < text.size() && belongs(text[at + length]))
        ++length;
    return length;
}

// Pointers print as 0x7f... or (nil), on Windows as 16 digits; result codes have 8 digits.
std::string maskPointers(const std::string &text) {
    std::string masked;
    for (std::size_t at = 0; at < text.size();) {
        const bool prefixed = text.compare(at, 2, "0x") == 0;
        const std::size_t digits = runOf(text, at + (prefixed ? 2 : 0), isHex);
        const std::size_t length = std::max<std::size_t>(digits + (prefixed ? 2 : 0), 1);
        const std::string run = text.substr(at, length);
        const bool isValue =
            masked.ends_with("=") || masked.ends_with("= ") || masked.ends_with(": ");
        if (isValue && (prefixed ? digits != 8 : digits == 16))
            masked += run == std::string(16, '0') ? "(nil)" : "%p";
        else
            masked += run;
        at += length;
    }
    return masked;
}

} // namespace

std::string TraceLine::text() const {
    if (level.empty())
        return "not a trace line: " + message;
    return "[" + level + "] [" + function + "] " + maskPointers(message);
}

std::vector<TraceLine> parseTrace(const std::string &content) {
    std::vector<TraceLine> lines;
    std::istringstream stream(content);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        TraceLine parsed;
        if (!parseLine(line, parsed))
            parsed = {"", "", line};
        lines.push_back(parsed);
    }
    return lines;
}

std::string maskHexDump(const std::string &text) {
    const auto colon = text.rfind("]: ");
    if (text.find("[length:") == std::string::npos || colon == std::string::npos ||
        !std::all_of(text.begin() + static_cast<std::ptrdiff_t>(colon) + 3, text.end(), isHex))
        return text;
    return text.substr(0, text.rfind("[length:")) + "[length:%d]: <hex>";
}

TraceCapture &TraceCapture::instance() {
    static TraceCapture capture;
    return capture;
}

TraceCapture::TraceCapture() : m_path(m_directory.path() / "trace.log") {
    setVariable("TEMBRA_KEY_PROV_LOG_PATH", m_path.string());
}

void TraceCapture::setLevel(const std::optional<std::string> &level) {
    setVariable("TEMBRA_KEY_PROV_LOG_LEVEL", level);
}

void TraceCapture::mark() {
    std::error_code error;
    const auto size = std::filesystem::file_size(m_path, error);
    m_mark = error ? 0 : size;
}

std::vector<TraceLine> TraceCapture::lines() const {
    std::ifstream file(m_path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(m_mark));
    return parseTrace({std::istreambuf_iterator<char>(file), {}});
}

Lines TraceCapture::texts() const {
    Lines texts;
    for (const TraceLine &line : lines())
        texts.push_back(line.text());
    return texts;
}

Lines TraceCapture::failures() const {
    Lines texts;
    for (const TraceLine &line : lines())
        if (line.level == "ERROR" || line.level == "WARN" || line.level.empty())
            texts.push_back(line.text());
    return texts;
}

bool TraceCapture::contains(const std::string &text) const {
    const Lines all = texts();
    return std::find(all.begin(), all.end(), text) != all.end();
}

} // namespace tembra::test
