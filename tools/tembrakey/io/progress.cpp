#include "tembrakey/io/progress.h"

#include <algorithm>
#include <cstdio>

#include "tembrakey/platform/terminal.h"

namespace tembra::tool {

namespace {

constexpr auto patience = std::chrono::seconds(1);
constexpr auto interval = std::chrono::milliseconds(100);

std::string inMebibytes(double bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MiB", bytes / (1024 * 1024));
    return text;
}

std::string bar(double share, int width) {
    const auto full = static_cast<std::size_t>(share * width);
    std::string text(full, '#');
    text.resize(static_cast<std::size_t>(width), '.');
    return "[" + text + "] " + std::to_string(static_cast<int>(share * 100)) + " % ";
}

} // namespace

Progress::Progress(std::string what, std::optional<std::uint64_t> totalBytes)
    : what_(std::move(what)), total_(totalBytes), atTerminal_(platform::isTerminal(stderr)),
      start_(Clock::now()), next_(start_ + patience) {}

Progress::~Progress() {
    if (drawn_)
        std::fputs("\r\033[K", stderr);
}

void Progress::advance(std::uint64_t bytes) {
    done_ += bytes;
    if (atTerminal_ && Clock::now() >= next_)
        draw();
}

void Progress::draw() {
    next_ = Clock::now() + interval;
    drawn_ = true;
    const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    const double done = static_cast<double>(done_);
    std::string line = what_ + "  ";
    const int width = std::clamp(platform::terminalColumns() - 50, 0, 40);
    if (total_ && *total_ > 0 && width > 0)
        line += bar(std::min(1.0, done / static_cast<double>(*total_)), width);
    line += inMebibytes(done) + "  " + inMebibytes(done / seconds) + "/s";
    std::fprintf(stderr, "\r%s\033[K", line.c_str());
    std::fflush(stderr);
}

} // namespace tembra::tool
