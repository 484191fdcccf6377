#include "platform/process.h"

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tembra::platform {

namespace {

// Asking the kernel takes a tenth of what a whole line takes, so each thread asks once. A forked
// process begins with a copy of the thread that made it, which has another id there.
thread_local long threadId = 0;

void forgetThreadId() {
    threadId = 0;
}
const bool forgetsAtFork = pthread_atfork(nullptr, nullptr, forgetThreadId) == 0;

} // namespace

long currentThreadId() {
    if (threadId == 0 || !forgetsAtFork)
        threadId = syscall(SYS_gettid);
    return threadId;
}

bool defaultTracePath(char *path, std::size_t size) {
    const char *directory = std::getenv("TMPDIR");
    if (!directory || directory[0] == '\0')
        directory = "/tmp";
    const int length = std::snprintf(path, size, "%s/tembra_key_prov.log", directory);
    return length > 0 && static_cast<std::size_t>(length) < size;
}

int openForAppending(const char *path) {
    return open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
}

void closeFile(int file) {
    close(file);
}

void appendToFile(int file, const char *text, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(file, text, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        text += written;
        size -= static_cast<std::size_t>(written);
    }
}

std::size_t pointerText(const void *pointer, char (&text)[POINTER_CAPACITY]) {
    std::memcpy(text, pointer ? "0x" : "(nil)", pointer ? 2 : 5);
    if (!pointer)
        return 5;
    const auto value = reinterpret_cast<std::uintptr_t>(pointer);
    const std::to_chars_result end = std::to_chars(text + 2, text + sizeof(text), value, 16);
    return static_cast<std::size_t>(end.ptr - text);
}

const char LINE_END[] = "\n";

// The conversion takes a lock that the whole process shares, and a sixth of what a line takes, so
// each thread keeps the text of the second that it wrote in last.
void localTimeText(char (&text)[TIME_CAPACITY]) {
    thread_local std::time_t lastTime = -1;
    thread_local char lastText[TIME_CAPACITY] = "";
    const std::time_t now = std::time(nullptr);
    if (now != lastTime) {
        std::tm local = {};
        if (!localtime_r(&now, &local) ||
            std::strftime(lastText, sizeof(lastText), TIME_FORMAT, &local) == 0)
            lastText[0] = '\0';
        lastTime = now;
    }
    std::memcpy(text, lastText, sizeof(text));
}

} // namespace tembra::platform
