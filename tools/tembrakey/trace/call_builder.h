// Groups lines into calls, in bounded memory.
#pragma once

#include <set>
#include <unordered_map>

#include "tembrakey/trace/call.h"
#include "tembrakey/trace/refused_pins.h"

namespace tembra::trace {

// Receives what was found in a log, in the order in which it ends.
class Sink {
public:
    virtual ~Sink() = default;
    // A call that no other call encloses, with everything inside it.
    virtual void take(Call &&call) = 0;
    // A line that is not a trace line, masked.
    virtual void takeForeign(std::uint64_t number, std::string_view text) = 0;
    virtual void takeRefusal(const RefusedPin &) {}
};

// Entry and exit lines (level debug) give nesting and durations. Without them a call begins with an
// entry point's own line of level information and lasts to the next one of its thread; errors and
// warnings that follow no such line are passed on one by one.
class CallBuilder {
public:
    // refused: numbers of lines with refused PINs, as far as they are known.
    CallBuilder(Sink &sink, std::set<std::uint64_t> refused)
        : m_sink(sink), m_refused(std::move(refused)) {}

    void add(const Line &line, std::uint64_t number);
    // Passes on the calls that the log leaves open.
    void finish();

private:
    struct Thread {
        std::vector<Call> open; // the innermost last
        std::size_t kept = 0;   // bytes in them
        std::uint64_t lastLine = 0;
    };

    Thread &threadOf(const Line &line, std::uint64_t number);
    void enter(Thread &thread, const Line &line, std::uint64_t number);
    void leave(Thread &thread, const Line &line, std::uint64_t number);
    void infer(Thread &thread, const Line &line, std::uint64_t number);
    void keep(Thread &thread, const Line &line, std::uint64_t number);
    bool hasRoom(Thread &thread, std::size_t bytes, bool failed);
    void close(Thread &thread);
    void closeAll(Thread &thread);

    Sink &m_sink;
    std::set<std::uint64_t> m_refused;
    std::unordered_map<std::int64_t, Thread> m_threads;
    std::size_t m_kept = 0; // bytes in the open calls of all threads
};

} // namespace tembra::trace
