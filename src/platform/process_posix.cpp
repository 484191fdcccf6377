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
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tembra::platform {

namespace {

// A system call would cost a tenth of a whole line, so each thread asks once. After a fork the
// copied thread has another id.
thread_local long threadId = 0;

void forgetThreadId() {
    threadId = 0;
}
const bool FORGETS_AT_FORK = pthread_atfork(nullptr, nullptr, forgetThreadId) == 0;

FileHazard hazardOf(const struct stat &status) {
    if (S_ISLNK(status.st_mode))
        return FileHazard::symbolicLink;
    if (!S_ISREG(status.st_mode))
        return FileHazard::notRegular;
    if (status.st_uid != geteuid())
        return FileHazard::otherOwner;
    return status.st_nlink == 1 ? FileHazard::none : FileHazard::severalLinks;
}

int openWith(const char *path, int flags) {
    return open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | flags, 0600);
}

} // namespace

// The buffer is for systems that copy the value.
// cppcheck-suppress uninitMemberVar
EnvironmentVariable::EnvironmentVariable(const char *name) : m_value(std::getenv(name)) {}

long currentThreadId() {
    if (threadId == 0 || !FORGETS_AT_FORK)
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
    return openWith(path, 0);
}

FileHazard fileHazard(const char *path) {
    struct stat status = {};
    return lstat(path, &status) == 0 ? hazardOf(status) : FileHazard::none;
}

int openSafelyForAppending(const char *path) {
    const int file = openWith(path, O_NOFOLLOW | O_NONBLOCK);
    struct stat status = {};
    if (file == NO_FILE || (fstat(file, &status) == 0 && hazardOf(status) == FileHazard::none))
        return file;
    close(file);
    return NO_FILE;
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

// The conversion takes a process-wide lock and a sixth of the time of a whole line, so each thread
// keeps the text of the last second in which it wrote.
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
