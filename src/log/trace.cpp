#include "log/trace.h"

#include "log/hex.h"
#include "log/line_text.h"
#include "platform/process.h"

#include <atomic>
#include <cstdarg>
#include <cstdlib>

namespace tembra {

namespace {

constexpr std::size_t PATH_CAPACITY = 260;

// Stays open from the first line that could be written until the process ends.
std::atomic<int> traceFile{platform::NO_FILE};

int openFile() {
    char defaultPath[PATH_CAPACITY];
    const bool hasDefault = platform::defaultTracePath(defaultPath, sizeof(defaultPath));
    const platform::EnvironmentVariable path("TEMBRA_KEY_PROV_LOG_PATH");
    if (path.value())
        return platform::openForAppending(path.value());
    return hasDefault ? platform::openSafelyForAppending(defaultPath) : platform::NO_FILE;
}

int openTrace() {
    const int file = openFile();
    if (file == platform::NO_FILE)
        return platform::NO_FILE;
    int first = platform::NO_FILE;
    if (traceFile.compare_exchange_strong(first, file))
        return file;
    platform::closeFile(file); // another thread was faster
    return first;
}

void writeLine(const char *tag, const char *function, const char *format, std::va_list arguments) {
    int file = traceFile.load(std::memory_order_acquire);
    if (file == platform::NO_FILE)
        file = openTrace();
    if (file == platform::NO_FILE)
        return;

    char time[platform::TIME_CAPACITY];
    platform::localTimeText(time);
    LineText line;
    line.appendNumber(platform::currentThreadId());
    line.append(" ");
    line.append(time);
    line.append(" ");
    line.append(tag);
    line.append(" [");
    line.append(function);
    line.append("] ");
    line.appendFormatted(format, arguments);
    line.append(" \n");
    if (line.data())
        platform::appendToFile(file, line.data(), line.size());
}

} // namespace

bool traceEnabled(TraceLevel level) {
    const platform::EnvironmentVariable variable("TEMBRA_KEY_PROV_LOG_LEVEL");
    if (!variable.value())
        return level <= TraceLevel::information;
    return std::atoi(variable.value()) >= static_cast<int>(level);
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

void writeLog(const char *tag, const char *function, const char *format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    writeLine(tag, function, format, arguments);
    va_end(arguments);
}

void traceHex(const char *function, const char *format, const unsigned char *data, int length) {
    if (!traceEnabled(TraceLevel::verbose))
        return;
    const HexText hex(data, length);
    if (hex.text())
        writeLog(traceTag(TraceLevel::verbose), function, format, length, hex.text());
}

call_stack_tracer::call_stack_tracer(const char *name) : m_name(name) {
    TEMBRA_TRACE(TraceLevel::debug, "call_stack_tracer::call_stack_tracer", ">>>>> %s", m_name);
}

call_stack_tracer::~call_stack_tracer() {
    TEMBRA_TRACE(TraceLevel::debug, "call_stack_tracer::~call_stack_tracer", "<<<<< %s", m_name);
}

} // namespace tembra
