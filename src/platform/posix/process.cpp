#include "platform/process.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tembra::platform {

long currentThreadId() {
    return syscall(SYS_gettid);
}

bool defaultTracePath(char *path, std::size_t size) {
    const char *directory = std::getenv("TMPDIR");
    if (!directory || directory[0] == '\0')
        directory = "/tmp";
    const int length = std::snprintf(path, size, "%s/tembra_key_prov.log", directory);
    return length > 0 && static_cast<std::size_t>(length) < size;
}

std::FILE *openForAppending(const char *path) {
    const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0)
        return nullptr;
    std::FILE *stream = fdopen(file, "a");
    if (!stream) {
        close(file);
        return nullptr;
    }
    std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

bool toLocalTime(std::time_t time, std::tm *local) {
    return localtime_r(&time, local) != nullptr;
}

} // namespace tembra::platform
