#include "platform/process.h"

#include <cstring>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace tembra::platform {

long currentThreadId() {
    return static_cast<long>(GetCurrentThreadId());
}

bool defaultTracePath(char *path, std::size_t size) {
    static const char name[] = "\\tembra_key_prov.log";
    const DWORD length = GetTempPathA(static_cast<DWORD>(size), path);
    if (length == 0 || length + sizeof(name) > size)
        return false;
    std::memcpy(path + length, name, sizeof(name));
    return true;
}

std::FILE *openForAppending(const char *path) {
    std::FILE *stream = std::fopen(path, "a");
    if (stream)
        std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

bool toLocalTime(std::time_t time, std::tm *local) {
    return localtime_s(local, &time) == 0;
}

} // namespace tembra::platform
