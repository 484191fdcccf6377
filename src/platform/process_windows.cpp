#include "platform/process.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <io.h>

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

// The run-time's own append mode seeks before it writes, which two processes can do at once; a
// handle that may only append lets the system do both in one. The descriptor's lock keeps threads
// apart where it cannot. Binary, because the text mode writes a long line in pieces.
int openForAppending(const char *path) {
    const HANDLE handle = CreateFileA(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return NO_FILE;
    const int file = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_BINARY);
    if (file == NO_FILE)
        CloseHandle(handle);
    return file;
}

void closeFile(int file) {
    _close(file);
}

void appendToFile(int file, const char *text, std::size_t size) {
    _write(file, text, static_cast<unsigned>(size));
}

std::size_t pointerText(const void *pointer, char (&text)[POINTER_CAPACITY]) {
    const auto value =
        reinterpret_cast<std::uintptr_t>(pointer); // in capitals whatever the compiler
    return static_cast<std::size_t>(
        std::snprintf(text, sizeof(text), "%016llX", static_cast<unsigned long long>(value)));
}

const char LINE_END[] = "\r\n";

void localTimeText(char (&text)[TIME_CAPACITY]) {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    if (localtime_s(&local, &now) != 0 ||
        std::strftime(text, sizeof(text), TIME_FORMAT, &local) == 0)
        text[0] = '\0';
}

} // namespace tembra::platform
