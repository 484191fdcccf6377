// Lines to calls, in bounded memory.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tembrakey/trace/call.h"
#include "tembrakey/trace/line.h"

namespace tembra::trace {

// Where what was found in a log goes, in the order in which it ends.
class Sink {
public:
    virtual ~Sink() = default;
    // A call that no other call encloses, with everything inside it.
    virtual void take(Call &&call) = 0;
    // A line that is no trace line, masked.
    virtual void takeForeign(std::uint64_t number, std::string_view text) = 0;
};

// Entry and exit lines (level debug) give nesting and ends. Where they lack, a call begins with the
// line that holds its arguments and lasts to the next call of its thread.
class CallBuilder {
public:
    explicit CallBuilder(Sink &sink) : m_sink(sink) {}

    // fullLength: of the message, which can be longer than what the line still holds of it.
    void add(const Line &line, std::uint64_t number, std::uint64_t fullLength);
    // Hands over the calls that the log leaves open.
    void finish();

private:
    struct Thread {
        std::vector<Call> open; // the innermost last
        std::size_t kept = 0;   // bytes of text in them
        std::uint64_t lastLine = 0;
    };

    Thread &threadOf(const Line &line, std::uint64_t number);
    void enter(Thread &thread, const Line &line, std::uint64_t number);
    void leave(Thread &thread, const Line &line, std::uint64_t number);
    void infer(Thread &thread, const Line &line, std::uint64_t number);
    static void keep(Thread &thread, const Line &line, std::uint64_t number,
                     std::uint64_t fullLength);
    void close(Thread &thread);
    void closeAll(Thread &thread);

    Sink &m_sink;
    std::unordered_map<std::int64_t, Thread> m_threads;
};

} // namespace tembra::trace
