// One line of the provider's trace log: "thread date time [LEVEL] [function] message ".
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tembra::trace {

enum class Level : std::uint8_t { error = 1, warning, information, debug, verbose };

// "ERROR", "WARN" ... as the log writes it, without the brackets.
std::string_view levelTag(Level level);

struct Line {
    std::int64_t thread = 0;
    std::int64_t second = 0; // of the writer's local clock, counted from 1970-01-01 00:00:00
    Level level = Level::error;
    std::string_view function;
    std::string_view message; // without the blank that closes a line
    bool complete = false;    // that blank is there
};

// Text is the line without its line end, and must outlive the result. Nothing for a text that is no
// trace line: foreign, torn in its head, or the rest of a torn one.
std::optional<Line> parseLine(std::string_view text);

// The thread of a text that ends inside the head of a trace line, after its time.
std::optional<std::int64_t> tornHeadThread(std::string_view text);

} // namespace tembra::trace
