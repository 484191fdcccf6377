#include "file_lock.h"

#include <utility>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace tembra::token::store {

std::optional<FileLock> FileLock::tryAcquire(const Path &file) {
    const HANDLE handle = ::CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const DWORD error = ::GetLastError();
        if (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION)
            return std::nullopt; // another process is removing it
        throwFileError();
    }
    FileLock lock(reinterpret_cast<std::intptr_t>(handle));
    OVERLAPPED whole = {};
    if (!::LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &whole))
        return std::nullopt;
    return lock;
}

FileLock::~FileLock() {
    if (m_handle != NONE)
        ::CloseHandle(reinterpret_cast<HANDLE>(m_handle));
}

void FileLock::releaseAndRemove(FileLock lock, const Path &file) {
    { const FileLock released(std::move(lock)); }
    ::DeleteFileW(file.c_str()); // fails while another process has it open
}

} // namespace tembra::token::store
