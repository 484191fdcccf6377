#include "tembrakey/io/progress.h"

#include <algorithm>
#include <cstdio>

#include "tembrakey/platform/terminal.h"

namespace tembra::tool {

namespace {

constexpr auto PATIENCE = std::chrono::seconds(1);
constexpr auto INTERVAL = std::chrono::milliseconds(100);

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
    : m_what(std::move(what)), m_total(totalBytes), m_atTerminal(platform::isTerminal(stderr)),
      m_start(Clock::now()), m_next(m_start + PATIENCE) {}

Progress::~Progress() {
    if (m_drawn)
        std::fputs("\r\033[K", stderr);
}

void Progress::advance(std::uint64_t bytes) {
    m_done += bytes;
    if (m_atTerminal && Clock::now() >= m_next)
        draw();
}

void Progress::draw() {
    m_next = Clock::now() + INTERVAL;
    m_drawn = true;
    const double seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
    const double done = static_cast<double>(m_done);
    std::string line = m_what + "  ";
    const int width = std::clamp(platform::terminalColumns() - 50, 0, 40);
    if (m_total && *m_total > 0 && width > 0)
        line += bar(std::min(1.0, done / static_cast<double>(*m_total)), width);
    line += inMebibytes(done) + "  " + inMebibytes(done / seconds) + "/s";
    std::fprintf(stderr, "\r%s\033[K", line.c_str());
    std::fflush(stderr);
}

} // namespace tembra::tool
