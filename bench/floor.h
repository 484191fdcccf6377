// The least that a provider with this trace can cost: what it must do in any case, written down as
// plainly as it goes.
#pragma once

#include "trace_file.h"

#include <ctime>
#include <mutex>
#include <sys/syscall.h>

namespace tembra::bench {

inline std::recursive_mutex floorLock; // as recursive as the provider's own

// A trace statement: nothing but the look-up of the level.
int lookLevelUp();

// The trace statements, the lock where the entry point takes it, the raw call.
template <typename EntryPoint>
void callFloor(EntryPoint &entryPoint) {
    for (int i = 0; i < entryPoint.statements; ++i)
        lookLevelUp();
    std::unique_lock lock(floorLock, std::defer_lock);
    if (entryPoint.locks)
        lock.lock();
    entryPoint.raw();
}

// One line at information with one write: the trace's line, with the arguments of the call. format
// begins with FLOOR_HEAD and ends in " \n".
#define FLOOR_HEAD "%ld %s [INFO] "

template <typename... Values> // numbers, pointers and, for %s, const char *
void writeFloorLine(const char *format, Values... values) {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    char time[200];
    std::strftime(time, sizeof(time), "%Y-%m-%d %H:%M:%S", &local);
    char line[1024];
    const int length =
        std::snprintf(line, sizeof(line), format, syscall(SYS_gettid), time, values...);
    TraceFile::instance().write({line, static_cast<std::size_t>(length)});
}

} // namespace tembra::bench
