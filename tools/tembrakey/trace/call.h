// A call of an entry point, put together from the lines of the log.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tembrakey/trace/line.h"

namespace tembra::trace {

struct CallLine {
    std::uint64_t number = 0; // in the log, from 1
    std::int64_t second = 0;  // as Line::second
    Level level = Level::error;
    std::string function;
    std::string message; // masked, and cut when it is very long
};

struct Call {
    std::string name; // empty: lines of a call whose beginning the log does not have
    std::int64_t thread = 0;
    std::uint64_t firstLine = 0;
    std::uint64_t lastLine = 0;
    std::int64_t begin = 0;
    std::int64_t end = 0;
    bool entered = false;  // its entry line is there (level debug)
    bool returned = false; // its exit line is there
    std::uint64_t errors = 0;
    std::uint64_t warnings = 0;
    std::uint64_t omitted = 0;          // lines and inner calls that were too many to keep
    std::optional<std::size_t> opening; // index of the line that holds the arguments
    std::vector<CallLine> lines;
    std::vector<Call> calls; // inside this one, in the order of the log

    bool failed() const { return errors > 0; }
    // Entered, but the log ends, or its thread went on, without its exit line.
    bool lost() const { return entered && !returned; }
    // Seconds from entry to exit, right to within one, since the log's clock shows whole seconds.
    // Nothing without both lines, or when the clock was set back.
    std::optional<std::int64_t> duration() const;
};

// "2026-11-21 12:30:00" of Line::second.
std::string timeText(std::int64_t second);

} // namespace tembra::trace
