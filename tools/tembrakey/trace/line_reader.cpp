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
    take_({line_, text, ending, first_, last});
    first_ = last;
    line_ += last ? 1 : 0;
}

void LineReader::pass(std::string_view line) {
    const std::size_t ending = endingLength(line);
    std::string_view text = line.substr(0, line.size() - ending);
    for (; text.size() > limit_; text.remove_prefix(limit_))
        hand(text.substr(0, limit_), {}, false);
    hand(text, line.substr(line.size() - ending), true);
}

// Two bytes stay behind, so that a line end is never cut in two.
void LineReader::passAllButTheEnd() {
    std::size_t passed = 0;
    for (; carried_.size() - passed > limit_ + 2; passed += limit_)
        hand(std::string_view(carried_).substr(passed, limit_), {}, false);
    carried_.erase(0, passed);
}

void LineReader::feed(std::string_view block) {
    while (!block.empty()) {
        const auto end = block.find('\n');
        const std::string_view part = block.substr(0, end == block.npos ? end : end + 1);
        block.remove_prefix(part.size());
        if (end != block.npos && carried_.empty()) {
            pass(part);
            continue;
        }
        carried_.append(part);
        if (end == block.npos) {
            passAllButTheEnd();
        } else {
            pass(carried_);
            carried_.clear();
        }
    }
}

void LineReader::finish() {
    if (!carried_.empty() || !first_)
        pass(carried_);
    carried_.clear();
}

} // namespace tembra::trace
