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

TraceReader::TraceReader(Mask mask, Filter filter, CallBuilder::Take takeCall,
                         TakeForeign takeForeign, std::set<std::uint64_t> refused)
    : m_filter(std::move(filter)), m_takeCall(std::move(takeCall)),
      m_takeForeign(std::move(takeForeign)), m_redactor(mask),
      m_builder([this](Call &&call) { this->takeCall(std::move(call)); }, std::move(refused)),
      m_reader([this](const RawLine &line) { takeLine(line); }) {}

void TraceReader::takeCall(Call &&call) {
    m_summary.count(call);
    m_filter.pass(std::move(call), [this](Call &&passed) {
        m_failures.add(passed);
        m_takeCall(std::move(passed));
    });
}

void TraceReader::takeLine(const RawLine &raw) {
    const std::string_view text = m_redactor.redact(raw);
    m_summary.lines = raw.number;
    if (const auto line = parseLine(text)) {
        m_summary.count(*line);
        const auto refused = m_pins.add(*line, raw.number);
        if (refused && m_summary.refusedPins.size() < MOST_REFUSED)
            m_summary.refusedPins.insert(refused->line);
        if (refused && m_filter.wants(refused->thread, refused->entryPoint))
            m_failures.add(*refused);
        m_builder.add(*line, raw.number);
    } else if (!text.empty()) {
        ++m_summary.foreignLines;
        if (m_filter.isEmpty())
            m_takeForeign(raw.number, text);
    }
}

void TraceReader::finish() {
    m_reader.finish();
    m_builder.finish();
}

} // namespace tembra::trace
