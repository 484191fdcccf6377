#include "platform.h"

#include <mutex>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace tembra::fault_injection {

namespace {

constexpr std::size_t MAX_ENVIRONMENT_VALUE = 32767;

HANDLE asHandle(std::intptr_t value) {
    return reinterpret_cast<HANDLE>(value); // NOLINT(performance-no-int-to-ptr)
}

} // namespace

// Asks the system, because the C library's copy does not show what a host sets later.
std::optional<std::string> environment(const char *name) {
    std::wstring value(MAX_ENVIRONMENT_VALUE, L'\0');
    const DWORD length = GetEnvironmentVariableW(pathFromUtf8(name).c_str(), value.data(),
                                                 static_cast<DWORD>(value.size()));
    if (length == 0 || length >= value.size())
        return std::nullopt;
    value.resize(length);
    const std::u8string text = std::filesystem::path(value).u8string();
    return std::string(text.begin(), text.end());
}

std::uint64_t threadNumber() {
    return GetCurrentThreadId();
}

AppendFile::AppendFile(const std::string &path)
    : m_handle(reinterpret_cast<std::intptr_t>(
          CreateFileW(pathFromUtf8(path).c_str(), FILE_APPEND_DATA,
                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                      FILE_ATTRIBUTE_NORMAL, nullptr))) {}

AppendFile::~AppendFile() {
    if (isOpen())
        CloseHandle(asHandle(m_handle));
}

bool AppendFile::isOpen() const {
    return asHandle(m_handle) != INVALID_HANDLE_VALUE;
}

// Windows appends atomically, but Wine seeks and writes in two steps.
void AppendFile::append(std::string_view piece) noexcept {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    DWORD written = 0;
    WriteFile(asHandle(m_handle), piece.data(), static_cast<DWORD>(piece.size()), &written,
              nullptr);
}

} // namespace tembra::fault_injection
