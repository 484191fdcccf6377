// The trace log: one text file that every entry point writes to.
//
// Its only configuration is TEMBRA_KEY_PROV_LOG_LEVEL and TEMBRA_KEY_PROV_LOG_PATH. AT LEVEL
// INFORMATION AND ABOVE IT CONTAINS PINS IN CLEAR; those who read the log rely on that.
#pragma once

#include "platform/compiler.h"

namespace tembra {

// The value is the minimum of the variable for a line to be written.
enum class TraceLevel { error = 1, warning = 2, information = 3, debug = 4, verbose = 5 };

// Reads the level variable each time, so that a change takes effect at the next line. If it is not
// set, errors, warnings and information are enabled.
bool traceEnabled(TraceLevel level);

const char *traceTag(TraceLevel level);

// Appends one line: thread id, local time, tag, [function], message. If the file cannot be opened
// or memory runs out, the line is dropped.
void writeLog(const char *tag, const char *function, const char *format, ...) TEMBRA_PRINTF(3, 4);

// Writes data in hex at level verbose; format takes the length and the text, for example
// "keyblob[length:%d]: %s".
void traceHex(const char *function, const char *format, const unsigned char *data, int length);

// The text or number to log for a pointer that may be null.
inline const char *shown(const char *text) {
    return text ? text : "(null)";
}
inline int shown(const int *number) {
    return number ? *number : 0;
}

// Writes the entry and exit lines of an entry point at level debug. The name must outlive the
// object.
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

// Evaluates the arguments only if the line is written.
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
