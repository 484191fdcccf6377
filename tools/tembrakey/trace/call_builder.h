// Groups lines into calls, in bounded memory.
#pragma once

#include <functional>
#include <set>
#include <unordered_map>

#include "tembrakey/trace/call.h"

namespace tembra::trace {

// Entry and exit lines (level debug) give nesting and durations. Without them a call begins with an
// entry point's own line of level information and lasts to the next one of its thread; errors and
// warnings that follow no such line are passed on one by one.
class CallBuilder {
public:
    // Receives the calls that no other call encloses, with everything inside them, as they end.
    using Take = std::function<void(Call &&)>;

    // refused: numbers of lines with refused PINs, as far as they are known.
    CallBuilder(Take take, std::set<std::uint64_t> refused)
        : m_take(std::move(take)), m_refused(std::move(refused)) {}

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

    Take m_take;
    std::set<std::uint64_t> m_refused;
    std::unordered_map<std::int64_t, Thread> m_threads;
    std::size_t m_kept = 0; // bytes in the open calls of all threads
};

} // namespace tembra::trace
