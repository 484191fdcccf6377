// Reads a log: bytes to masked calls, and what the whole log amounts to.
#pragma once

#include "tembrakey/trace/call_builder.h"
#include "tembrakey/trace/line_reader.h"
#include "tembrakey/trace/redactor.h"

namespace tembra::trace {

struct EntryPointCount {
    std::uint64_t calls = 0;
    std::uint64_t failed = 0;
    std::optional<std::chrono::seconds> longest; // unknown without durations
};

struct Summary {
    std::uint64_t lines = 0;
    std::uint64_t foreignLines = 0;
    std::uint64_t calls = 0; // inner ones too
    std::uint64_t failedCalls = 0;
    std::uint64_t lostCalls = 0;
    std::uint64_t warnedCalls = 0; // with warnings, but without errors
    bool hasDurations = false;     // at least one call has its entry and exit lines
    std::set<std::int64_t> threads;
    bool hasMoreThreads = false; // than the set has room for
    std::optional<Time> begin, end;
    std::map<std::string, EntryPointCount> entryPoints;
    std::set<std::uint64_t> refusedPins; // line numbers

    void count(const Line &line);
    // The call and those inside it.
    void count(const Call &call);
};

// Every text passes the redactor before anything else sees it.
class TraceReader {
public:
    // refused: what an earlier reading of the log found.
    TraceReader(Mask mask, Sink &sink, std::set<std::uint64_t> refused = {});

    void feed(std::string_view block) { m_reader.feed(block); }
    void finish();
    const Summary &summary() const { return m_counting.summary; }

private:
    // Counts what passes on its way to the sink.
    struct Counting final : Sink {
        explicit Counting(Sink &target) : sink(target) {}
        void take(Call &&call) override;
        void takeForeign(std::uint64_t number, std::string_view text) override;
        void takeRefusal(const RefusedPin &pin) override;
        Sink &sink;
        Summary summary;
    };

    void take(const RawLine &line);

    Counting m_counting;
    Redactor m_redactor;
    RefusedPins m_pins;
    CallBuilder m_builder;
    LineReader m_reader;
};

} // namespace tembra::trace
