// A call of an entry point, put together from the lines of the log.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tembrakey/trace/line.h"

namespace tembra::trace {

struct CallLine {
    std::uint64_t number = 0; // in the log, from 1
    Time time;
    Level level = Level::error;
    std::string function;
    std::string message;     // masked, and cut when it is very long
    bool isOrdinary = false; // an error line that reports nothing wrong
    bool isOpening = false;  // has the arguments of the call

    bool failed() const { return level == Level::error && !isOrdinary; }
};

struct Call {
    std::string name; // the entry point; of a lone line, its function
    std::int64_t thread = 0;
    std::uint64_t firstLine = 0;
    std::uint64_t lastLine = 0;
    Time begin;
    Time end;
    bool isLine = false;   // a lone line, which belongs to no call
    bool entered = false;  // has its entry line (level debug)
    bool returned = false; // has its exit line
    bool refused = false;  // its PIN was probably refused
    std::uint64_t errors = 0;
    std::uint64_t warnings = 0;
    std::uint64_t omitted = 0; // lines and inner calls beyond what is kept
    std::vector<CallLine> lines;
    std::vector<Call> calls; // inside this one, in the order of the log

    bool failed() const { return errors > 0; }
    // The log ends, or its thread continues, without its exit line.
    bool lost() const { return entered && !returned; }
    // Right to within a second, since the clock of the log shows whole ones. Unknown without both
    // lines, or if the clock was set back.
    std::optional<std::chrono::seconds> duration() const {
        if (!entered || !returned || end < begin)
            return std::nullopt;
        return end - begin;
    }
};

} // namespace tembra::trace
