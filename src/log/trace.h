// The trace log: one text file that every entry point writes to.
//
// TEMBRA_KEY_PROV_LOG_LEVEL and TEMBRA_KEY_PROV_LOG_PATH control it and are its only configuration.
// AT LEVEL INFORMATION AND ABOVE THE LINES HOLD PINS IN CLEAR; that is part of the log's contract
// with the people who read it.
#pragma once

#include "platform/compiler.h"

namespace tembra {

// The level that the variable must reach for a line to be written.
enum class TraceLevel { error = 1, warning = 2, information = 3, debug = 4, verbose = 5 };

// Looks the level variable up anew, on purpose, so that a change takes effect at the next line.
// Unset, it lets errors, warnings and information pass.
bool traceEnabled(TraceLevel level);

const char *traceTag(TraceLevel level);

// Appends one line: thread id, local time, tag, [function], message. Never fails visibly: a file
// that cannot be opened or a line that cannot be allocated is only dropped.
void writeLog(const char *tag, const char *function, const char *format, ...) TEMBRA_PRINTF(3, 4);

// Writes the hex text of data at level verbose; format takes the length and the text, as in
// "keyblob[length:%d]: %s". The text is wiped before it is freed.
void traceHex(const char *function, const char *format, const unsigned char *data, int length);

// What a line shows for a text or a number behind a pointer that may be null.
inline const char *shown(const char *text) {
    return text ? text : "(null)";
}
inline int shown(const int *number) {
    return number ? *number : 0;
}

// Writes the entry and exit lines of an entry point at level debug. The name must outlive it.
class call_stack_tracer {
public:
    explicit call_stack_tracer(const char *name);
    ~call_stack_tracer();
    call_stack_tracer(const call_stack_tracer &) = delete;
    call_stack_tracer &operator=(const call_stack_tracer &) = delete;

private:
    const char *m_name;
};

} // namespace tembra

// The arguments of a line that is not written are not evaluated.
#define TEMBRA_TRACE(level, function, ...)                                                         \
    do {                                                                                           \
        if (::tembra::traceEnabled(level))                                                         \
            ::tembra::writeLog(::tembra::traceTag(level), function, __VA_ARGS__);                  \
    } while (false)

#define TRACE_ERROR(...) TEMBRA_TRACE(::tembra::TraceLevel::error, __func__, __VA_ARGS__)
#define TRACE_WARN(...) TEMBRA_TRACE(::tembra::TraceLevel::warning, __func__, __VA_ARGS__)
#define TRACE_INFO(...) TEMBRA_TRACE(::tembra::TraceLevel::information, __func__, __VA_ARGS__)
#define TRACE_DEBUG(...) TEMBRA_TRACE(::tembra::TraceLevel::debug, __func__, __VA_ARGS__)
#define TRACE_HEX(format, data, length) ::tembra::traceHex(__func__, format, data, length)
