// Reads a log: bytes to masked calls, and what the whole log amounts to.
#pragma once

#include "tembrakey/trace/call_builder.h"
#include "tembrakey/trace/failures.h"
#include "tembrakey/trace/filter.h"
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
    using TakeForeign = std::function<void(std::uint64_t number, std::string_view text)>;

    // Passes on the calls that the filter selects and, without a filter, the lines that are not
    // trace lines. refused: what an earlier reading of the log found.
    TraceReader(Mask mask, Filter filter, CallBuilder::Take takeCall, TakeForeign takeForeign,
                std::set<std::uint64_t> refused = {});

    void feed(std::string_view block) { m_reader.feed(block); }
    void finish();
    // Of the whole log.
    const Summary &summary() const { return m_summary; }
    // Of what the filter selects.
    const Failures &failures() const { return m_failures; }

private:
    void takeLine(const RawLine &line);
    void takeCall(Call &&call);

    Filter m_filter;
    CallBuilder::Take m_takeCall;
    TakeForeign m_takeForeign;
    Summary m_summary;
    Failures m_failures;
    Redactor m_redactor;
    RefusedPins m_pins;
    CallBuilder m_builder;
    LineReader m_reader;
};

} // namespace tembra::trace
