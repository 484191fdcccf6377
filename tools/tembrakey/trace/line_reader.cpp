#include "tembrakey/trace/line_reader.h"

namespace tembra::trace {

namespace {

std::size_t endingLength(std::string_view line) {
    if (line.ends_with("\r\n"))
        return 2;
    return line.ends_with('\n') ? 1 : 0;
}

} // namespace

void LineReader::hand(std::string_view text, std::string_view ending, bool last) {
    m_take({m_line, text, ending, m_first, last});
    m_first = last;
    m_line += last ? 1 : 0;
}

void LineReader::pass(std::string_view line) {
    const std::size_t ending = endingLength(line);
    std::string_view text = line.substr(0, line.size() - ending);
    for (; text.size() > m_limit; text.remove_prefix(m_limit))
        hand(text.substr(0, m_limit), {}, false);
    hand(text, line.substr(line.size() - ending), true);
}

// Two bytes stay behind, so that a line end is never cut in two.
void LineReader::passAllButTheEnd() {
    std::size_t passed = 0;
    for (; m_carried.size() - passed > m_limit + 2; passed += m_limit)
        hand(std::string_view(m_carried).substr(passed, m_limit), {}, false);
    m_carried.erase(0, passed);
}

void LineReader::feed(std::string_view block) {
    while (!block.empty()) {
        const auto end = block.find('\n');
        const std::string_view part = block.substr(0, end == block.npos ? end : end + 1);
        block.remove_prefix(part.size());
        if (end != block.npos && m_carried.empty()) {
            pass(part);
            continue;
        }
        m_carried.append(part);
        if (end == block.npos) {
            passAllButTheEnd();
        } else {
            pass(m_carried);
            m_carried.clear();
        }
    }
}

void LineReader::finish() {
    if (!m_carried.empty() || !m_first)
        pass(m_carried);
    m_carried.clear();
}

} // namespace tembra::trace
