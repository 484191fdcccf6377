// An exclusive lock on a file between processes. The operating system releases it if its holder
// dies.
#pragma once

#include "file_system.h"

#include <cstdint>
#include <optional>

namespace tembra::token::store {

class FileLock {
public:
    // Takes the lock if it is free, creating the file; Error(SAR_FILEERR) if the file cannot be
    // opened. Each lock opens the file anew, so that a forked process never shares one.
    static std::optional<FileLock> tryAcquire(const Path &file);

    FileLock(FileLock &&other) noexcept : m_handle(other.m_handle) { other.m_handle = NONE; }
    FileLock &operator=(FileLock &&) = delete;
    ~FileLock();

    // Releases the lock and removes its file unless another process has it open.
    static void releaseAndRemove(FileLock lock, const Path &file);

private:
    static constexpr std::intptr_t NONE = -1;
    explicit FileLock(std::intptr_t handle) : m_handle(handle) {}

    std::intptr_t m_handle; // the system's descriptor or handle
};

} // namespace tembra::token::store
