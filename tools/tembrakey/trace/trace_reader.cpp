#include "tembrakey/trace/trace_reader.h"

#include <algorithm>

namespace tembra::trace {

namespace {

constexpr std::size_t MOST_THREADS = 10000;
constexpr std::size_t MOST_ENTRY_POINTS = 100; // a damaged log may have other names
constexpr std::size_t MOST_REFUSED = 100000;

} // namespace

void Summary::count(const Line &line) {
    begin = std::min(begin.value_or(line.time), line.time);
    end = std::max(end.value_or(line.time), line.time);
    if (threads.size() < MOST_THREADS)
        threads.insert(line.thread);
    else
        hasMoreThreads |= !threads.contains(line.thread);
}

void Summary::count(const Call &call) {
    for (const Call &inner : call.calls)
        count(inner);
    if (call.isLine)
        return;
    ++calls;
    failedCalls += call.failed() ? 1 : 0;
    lostCalls += call.lost() ? 1 : 0;
    warnedCalls += !call.failed() && call.warnings > 0 ? 1 : 0;
    const auto duration = call.duration();
    hasDurations |= duration.has_value();
    if (entryPoints.size() >= MOST_ENTRY_POINTS && !entryPoints.contains(call.name))
        return;
    EntryPointCount &entry = entryPoints[call.name];
    ++entry.calls;
    entry.failed += call.failed() ? 1 : 0;
    if (duration)
        entry.longest = std::max(entry.longest.value_or(*duration), *duration);
}

void TraceReader::Counting::take(Call &&call) {
    summary.count(call);
    sink.take(std::move(call));
}

void TraceReader::Counting::takeForeign(std::uint64_t number, std::string_view text) {
    ++summary.foreignLines;
    sink.takeForeign(number, text);
}

void TraceReader::Counting::takeRefusal(const RefusedPin &pin) {
    if (summary.refusedPins.size() < MOST_REFUSED)
        summary.refusedPins.insert(pin.line);
    sink.takeRefusal(pin);
}

TraceReader::TraceReader(Mask mask, Sink &sink, std::set<std::uint64_t> refused)
    : m_counting(sink), m_redactor(mask), m_builder(m_counting, std::move(refused)),
      m_reader([this](const RawLine &line) { take(line); }) {}

void TraceReader::take(const RawLine &raw) {
    const std::string_view text = m_redactor.redact(raw);
    m_counting.summary.lines = raw.number;
    if (const auto line = parseLine(text)) {
        m_counting.summary.count(*line);
        if (const auto refused = m_pins.add(*line, raw.number))
            m_counting.takeRefusal(*refused);
        m_builder.add(*line, raw.number);
    } else if (!text.empty()) {
        m_counting.takeForeign(raw.number, text);
    }
}

void TraceReader::finish() {
    m_reader.finish();
    m_builder.finish();
}

} // namespace tembra::trace
