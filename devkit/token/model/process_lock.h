// One process's hold on one token against all other processes. It is counted, so that a call made
// while the host holds the device doesn't wait for its own process.
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

    // False when another process kept the token for all of this time.
    bool acquire(std::uint32_t milliseconds);
    void release();
    // Releases and takes the lock's file away, with the token that it belonged to.
    void releaseAndRemove();

private:
    bool tryAcquire();

    const store::Path m_file;
    std::mutex m_mutex;
    unsigned m_holds = 0;
    std::optional<store::FileLock> m_lock; // while there are holds
};

} // namespace tembra::token::model
