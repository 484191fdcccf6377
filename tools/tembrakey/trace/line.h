// One line of the provider's trace log: "thread date time [LEVEL] [function] message ".
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tembra::trace {

enum class Level : std::uint8_t { error = 1, warning, information, debug, verbose };

// The writer's local clock.
using Time = std::chrono::sys_seconds;

// "ERROR", "WARN" ..., as in the log but without brackets.
std::string_view levelTag(Level level);

// "2026-11-21 12:30:00"
std::string timeText(Time time);

struct Line {
    std::int64_t thread = 0;
    Time time;
    Level level = Level::error;
    std::string_view function;
    std::string_view message; // without the final blank
    bool complete = false;    // has the final blank
};

// Parses a line without its line end, which must outlive the result.
std::optional<Line> parseLine(std::string_view text);

// Whether the text is a trace line torn before its message.
bool isTornHead(std::string_view text);

} // namespace tembra::trace
