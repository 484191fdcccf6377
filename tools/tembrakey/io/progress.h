// How far a long job is, on standard error.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tembra::tool {

// Draws a bar once the job has taken a second, and only at a terminal; wipes it at the end.
class Progress {
public:
    Progress(std::string what, std::optional<std::uint64_t> totalBytes);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void advance(std::uint64_t bytes);

private:
    using Clock = std::chrono::steady_clock;
    void draw();

    std::string m_what;
    std::optional<std::uint64_t> m_total;
    std::uint64_t m_done = 0;
    bool m_atTerminal;
    bool m_drawn = false;
    Clock::time_point m_start;
    Clock::time_point m_next;
};

} // namespace tembra::tool
