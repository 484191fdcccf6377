#include "tembrakey/trace/filter.h"

#include <algorithm>

namespace tembra::trace {

namespace {

template <typename T>
bool allows(const std::vector<T> &wanted, const T &value) {
    return wanted.empty() || std::find(wanted.begin(), wanted.end(), value) != wanted.end();
}

} // namespace

bool Filter::isEmpty() const {
    return threads.empty() && entryPoints.empty() && level == Level::verbose && !failedOnly;
}

bool Filter::wants(std::int64_t thread, const std::string &entryPoint) const {
    return allows(threads, thread) && allows(entryPoints, entryPoint);
}

bool Filter::keepLevels(Call &call) const {
    if (level == Level::verbose)
        return true;
    std::erase_if(call.lines, [this](const CallLine &line) { return line.level > level; });
    std::erase_if(call.calls, [this](Call &inner) { return !keepLevels(inner); });
    return level == Level::debug || !call.lines.empty() || !call.calls.empty();
}

void Filter::pass(Call &&call, const std::function<void(Call &&)> &take) const {
    if (wants(call.thread, call.name) && (!failedOnly || call.failed() || call.refused)) {
        if (keepLevels(call))
            take(std::move(call));
        return;
    }
    for (Call &inner : call.calls)
        pass(std::move(inner), take);
}

} // namespace tembra::trace
