#include "platform.h"

#include <mutex>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace tembra::door {

namespace {

std::wstring wide(std::string_view utf8) {
    const int length = static_cast<int>(utf8.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    std::wstring out(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, out.data(), needed);
    return out;
}

std::string narrow(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int needed =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, out.data(), needed, nullptr, nullptr);
    return out;
}

HANDLE asHandle(std::intptr_t value) {
    return reinterpret_cast<HANDLE>(value); // NOLINT(performance-no-int-to-ptr)
}

} // namespace

std::optional<std::string> environmentVariable(const char *name) {
    const std::wstring key = wide(name);
    std::wstring value(256, L'\0');
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        const DWORD length =
            GetEnvironmentVariableW(key.c_str(), value.data(), static_cast<DWORD>(value.size()));
        if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND)
            return std::nullopt;
        if (length < value.size())
            return narrow(std::wstring_view(value).substr(0, length));
        value.resize(length); // which counts the closing NUL when the buffer was too short
    }
}

std::uint64_t threadNumber() {
    return GetCurrentThreadId();
}

AppendFile::AppendFile(const std::string &path)
    : m_handle(reinterpret_cast<std::intptr_t>(
          CreateFileW(wide(path).c_str(), FILE_APPEND_DATA,
                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                      FILE_ATTRIBUTE_NORMAL, nullptr))) {}

AppendFile::~AppendFile() {
    if (isOpen())
        CloseHandle(asHandle(m_handle));
}

bool AppendFile::isOpen() const {
    return asHandle(m_handle) != INVALID_HANDLE_VALUE;
}

// The system appends atomically, but Wine finds the end and writes there in two steps.
void AppendFile::append(std::string_view piece) noexcept {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    DWORD written = 0;
    WriteFile(asHandle(m_handle), piece.data(), static_cast<DWORD>(piece.size()), &written,
              nullptr);
}

} // namespace tembra::door
