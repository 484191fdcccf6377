#include "tembrakey/trace/summary.h"

#include <algorithm>

#include "tembrakey/trace/entry_points.h"

namespace tembra::trace {

namespace {

constexpr std::size_t MOST_THREADS = 10000;

} // namespace

void Summary::count(const Line &line) {
    begin = std::min(begin.value_or(line.second), line.second);
    end = std::max(end.value_or(line.second), line.second);
    if (threads.size() < MOST_THREADS)
        threads.insert(line.thread);
    else
        moreThreads |= !threads.contains(line.thread);
}

void Summary::count(const Call &call) {
    for (const Call &inner : call.calls)
        count(inner);
    ++calls;
    failedCalls += call.failed() ? 1 : 0;
    lostCalls += call.lost() ? 1 : 0;
    warnedCalls += !call.failed() && call.warnings > 0 ? 1 : 0;
    const auto duration = call.duration();
    hasDurations |= duration.has_value();
    if (findEntryPoint(call.name) == nullptr)
        return;
    EntryPointCount &entry = entryPoints[call.name];
    ++entry.calls;
    entry.failed += call.failed() ? 1 : 0;
    if (duration)
        entry.longest = std::max(entry.longest.value_or(*duration), *duration);
}

} // namespace tembra::trace
