// The lock of this process on a token. It is counted, so that a call does not wait for a lock that
// its own process holds (SKF_LockDev).
#pragma once

#include "token/store/file_lock.h"

#include <cstdint>
#include <mutex>
#include <optional>

namespace tembra::token::model {

class ProcessLock {
public:
    static constexpr std::uint32_t FOREVER = 0xFFFFFFFF;

    explicit ProcessLock(store::Path file) : m_file(std::move(file)) {}

    // False if another process held the lock for all of this time.
    bool acquire(std::uint32_t milliseconds);
    void release();
    // Releases the lock and removes its file.
    void releaseAndRemove();

private:
    bool tryAcquire();

    const store::Path m_file;
    std::mutex m_mutex;
    unsigned m_holds = 0;
    std::optional<store::FileLock> m_lock; // while there are holds
};

} // namespace tembra::token::model
