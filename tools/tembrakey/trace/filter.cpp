#include "tembrakey/trace/filter.h"

#include <algorithm>

namespace tembra::trace {

namespace {

template <typename T, typename U>
bool allows(const std::vector<T> &wanted, const U &value) {
    return wanted.empty() || std::find(wanted.begin(), wanted.end(), value) != wanted.end();
}

} // namespace

bool Filter::isEmpty() const {
    return threads.empty() && entryPoints.empty() && level == Level::verbose && !failedOnly;
}

bool Filter::wants(const Call &call) const {
    return allows(entryPoints, call.name) && (!failedOnly || call.failed());
}

// False when nothing of the call is left.
bool Filter::keepLevels(Call &call) const {
    if (level == Level::verbose)
        return true;
    if (call.opening && call.lines[*call.opening].level > level)
        call.opening.reset();
    const auto isLess = [this](const CallLine &line) { return line.level > level; };
    if (call.opening) {
        const auto end = call.lines.begin() + static_cast<std::ptrdiff_t>(*call.opening);
        *call.opening -= static_cast<std::size_t>(std::count_if(call.lines.begin(), end, isLess));
    }
    std::erase_if(call.lines, isLess);
    std::erase_if(call.calls, [this](Call &inner) { return !keepLevels(inner); });
    return level == Level::debug || !call.lines.empty() || !call.calls.empty();
}

void Filter::pass(Call &&call, const std::function<void(Call &&)> &take) const {
    if (!allows(threads, call.thread))
        return;
    if (wants(call)) {
        if (keepLevels(call))
            take(std::move(call));
        return;
    }
    for (Call &inner : call.calls)
        pass(std::move(inner), take);
}

} // namespace tembra::trace
