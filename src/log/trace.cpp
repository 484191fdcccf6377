#include "log/trace.h"

#include "log/hex.h"
#include "platform/memory.h"
#include "platform/process.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace tembra {

namespace {

constexpr std::size_t PATH_CAPACITY = 260;
constexpr std::size_t TIME_CAPACITY = 200;

// Open from the first line that could be written to the end of the process.
std::atomic<std::FILE *> traceStream{nullptr};

std::FILE *openStream() {
    char defaultPath[PATH_CAPACITY];
    const bool hasDefault = platform::defaultTracePath(defaultPath, sizeof(defaultPath));
    const char *path = std::getenv("TEMBRA_KEY_PROV_LOG_PATH");
    if (!path && hasDefault)
        path = defaultPath;
    std::FILE *stream = path ? platform::openForAppending(path) : nullptr;
    if (!stream)
        return nullptr;

    std::FILE *first = nullptr;
    if (traceStream.compare_exchange_strong(first, stream))
        return stream;
    std::fclose(stream); // another thread opened it meanwhile
    return first;
}

void localTimeText(char (&text)[TIME_CAPACITY]) {
    std::tm local = {};
    platform::toLocalTime(std::time(nullptr), &local);
    if (std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local) == 0)
        text[0] = '\0';
}

// The whole line in one block, so that it reaches the file in one write.
void writeLine(std::FILE *stream, const char *tag, const char *function, const char *format,
               std::va_list arguments) {
    char time[TIME_CAPACITY];
    localTimeText(time);
    const long thread = platform::currentThreadId();

    std::va_list measured;
    va_copy(measured, arguments);
    const int messageLength = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    const int headLength =
        std::snprintf(nullptr, 0, "%ld %s %s [%s] ", thread, time, tag, function);
    if (messageLength < 0 || headLength < 0)
        return;

    const std::size_t head = static_cast<std::size_t>(headLength);
    const std::size_t message = static_cast<std::size_t>(messageLength);
    char *line = static_cast<char *>(std::malloc(head + message + 3));
    if (!line)
        return;
    std::snprintf(line, head + 1, "%ld %s %s [%s] ", thread, time, tag, function);
    std::vsnprintf(line + head, message + 1, format, arguments);
    line[head + message] = ' ';
    line[head + message + 1] = '\n';
    std::fwrite(line, 1, head + message + 2, stream);
    std::fflush(stream);
    platform::wipe(line, head + message + 2); // it can show a PIN or plaintext
    std::free(line);
}

} // namespace

bool traceEnabled(TraceLevel level) {
    const char *value = std::getenv("TEMBRA_KEY_PROV_LOG_LEVEL");
    if (!value)
        return level <= TraceLevel::information;
    return std::atoi(value) >= static_cast<int>(level);
}

const char *traceTag(TraceLevel level) {
    switch (level) {
    case TraceLevel::error: return "[ERROR]";
    case TraceLevel::warning: return "[WARN]";
    case TraceLevel::information: return "[INFO]";
    case TraceLevel::debug: return "[DEBUG]";
    case TraceLevel::verbose: return "[VERBOSE]";
    }
    return "";
}

void writeLog(const char *format, const char *tag, const char *function, ...) {
    std::FILE *stream = traceStream.load(std::memory_order_acquire);
    if (!stream)
        stream = openStream();
    if (!stream)
        return;
    std::va_list arguments;
    va_start(arguments, function);
    writeLine(stream, tag, function, format, arguments);
    va_end(arguments);
}

void traceHex(const char *function, const char *format, const unsigned char *data, int length) {
    if (!traceEnabled(TraceLevel::verbose))
        return;
    const HexText hex(data, length);
    if (hex.text())
        writeLog(format, traceTag(TraceLevel::verbose), function, length, hex.text());
}

call_stack_tracer::call_stack_tracer(const char *name) : m_name(name) {
    TEMBRA_TRACE(TraceLevel::debug, "call_stack_tracer::call_stack_tracer", ">>>>> %s", m_name);
}

call_stack_tracer::~call_stack_tracer() {
    TEMBRA_TRACE(TraceLevel::debug, "call_stack_tracer::~call_stack_tracer", "<<<<< %s", m_name);
}

} // namespace tembra
