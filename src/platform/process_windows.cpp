#include "platform/process.h"

#include "platform/memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <io.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace tembra::platform {

EnvironmentVariable::EnvironmentVariable(const char *name) : m_value(m_usual) {
    m_usual[0] = '\0';
    SetLastError(ERROR_SUCCESS); // finding an empty value leaves it as it is
    const DWORD size = GetEnvironmentVariableA(name, m_usual, USUAL_CAPACITY);
    if (size == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND)
        m_value = nullptr;
    if (size < USUAL_CAPACITY)
        return;
    m_usual[0] = '\0';
    m_copy = static_cast<char *>(std::malloc(size));
    // Another thread may have set a longer value meanwhile, or removed it.
    const DWORD copied = m_copy ? GetEnvironmentVariableA(name, m_copy, size) : 0;
    if (copied > 0 && copied < size)
        m_value = m_copy;
}

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

// The run-time's append mode seeks and then writes, which two processes can do at the same time; a
// handle with append access alone makes the system do both in one step. Where it cannot, the
// descriptor's lock still separates threads. Binary, because text mode splits a long line.
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

FileHazard fileHazard(const char *) {
    return FileHazard::none;
}

int openSafelyForAppending(const char *path) {
    return openForAppending(path);
}

void closeFile(int file) {
    _close(file);
}

void appendToFile(int file, const char *text, std::size_t size) {
    const char *end = text + size;
    const SecretBlock block(size + static_cast<std::size_t>(std::count(text, end, '\n')));
    if (!block.data())
        return;
    unsigned char *next = block.data();
    for (; text != end; ++text) {
        if (*text == '\n')
            *next++ = '\r';
        *next++ = static_cast<unsigned char>(*text);
    }
    _write(file, block.data(), static_cast<unsigned>(block.size()));
}

std::size_t pointerText(const void *pointer, char (&text)[POINTER_CAPACITY]) {
    // The compilers' own %p differ in the case of the digits.
    const auto value = reinterpret_cast<std::uintptr_t>(pointer);
    return static_cast<std::size_t>(
        std::snprintf(text, sizeof(text), "%016llX", static_cast<unsigned long long>(value)));
}

void localTimeText(char (&text)[TIME_CAPACITY]) {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    if (localtime_s(&local, &now) != 0 ||
        std::strftime(text, sizeof(text), TIME_FORMAT, &local) == 0)
        text[0] = '\0';
}

} // namespace tembra::platform
