// An exclusive lock on a file between processes. The operating system drops it when its holder
// dies. The twins file_lock_posix.cpp and file_lock_windows.cpp implement it.
#pragma once

#include "file_system.h"

#include <cstdint>
#include <optional>

namespace tembra::token::store {

class FileLock {
public:
    // Takes the lock if nobody holds it, creating the file; throws std::system_error when the file
    // can't be opened. The file is opened for each lock, so that a forked process never shares one.
    static std::optional<FileLock> tryAcquire(const Path &file);

    FileLock(FileLock &&other) noexcept : m_handle(other.m_handle) { other.m_handle = NONE; }
    FileLock &operator=(FileLock &&) = delete;
    ~FileLock();

    // Gives up the lock and removes its file, when nobody else has it open.
    static void releaseAndRemove(FileLock lock, const Path &file);

private:
    static constexpr std::intptr_t NONE = -1;
    explicit FileLock(std::intptr_t handle) : m_handle(handle) {}

    std::intptr_t m_handle; // the system's descriptor or handle
};

} // namespace tembra::token::store
