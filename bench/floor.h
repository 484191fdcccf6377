// The least that a provider with this trace can cost: what it must do in any case, written down as
// plainly as it goes.
#pragma once

#include "trace_file.h"

#include <cstddef>
#include <cstdio>
#include <ctime>
#include <mutex>

namespace tembra::bench {

// The level variable, looked up once for each trace statement.
void lookLevelUp(int statements);

// As recursive as the provider's own.
extern std::recursive_mutex floorLock;

struct LineHead {
    long thread;
    char time[200];
};
LineHead lineHead();

// One line at information with one write: the trace's line, with the arguments of the call. format
// begins with FLOOR_HEAD and ends in " \n".
#define FLOOR_HEAD "%ld %s [INFO] "

template <typename... Values> // numbers, pointers and, for %s, const char *
void writeFloorLine(const char *format, Values... values) {
    const LineHead head = lineHead();
    char line[1024];
    const int length = std::snprintf(line, sizeof(line), format, head.thread, head.time, values...);
    TraceFiles::instance().write(line, static_cast<std::size_t>(length));
}

} // namespace tembra::bench
