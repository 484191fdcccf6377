#include "process_lock.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace tembra::token::model {

bool ProcessLock::tryAcquire() {
    const std::lock_guard guard(m_mutex);
    if (m_holds == 0) {
        auto lock = store::FileLock::tryAcquire(m_file);
        if (!lock)
            return false;
        m_lock.emplace(std::move(*lock));
    }
    ++m_holds;
    return true;
}

// Polls, because a wait in the system would not end when another thread of this process gets the
// lock, and time limits differ between systems.
bool ProcessLock::acquire(std::uint32_t milliseconds) {
    using namespace std::chrono;
    const auto start = steady_clock::now();
    microseconds pause(50);
    while (!tryAcquire()) {
        if (milliseconds != FOREVER &&
            steady_clock::now() - start >= std::chrono::milliseconds(milliseconds))
            return false;
        std::this_thread::sleep_for(pause);
        pause = std::min<microseconds>(pause * 2, 3ms);
    }
    return true;
}

void ProcessLock::release() {
    const std::lock_guard guard(m_mutex);
    if (--m_holds == 0)
        m_lock.reset();
}

void ProcessLock::releaseAndRemove() {
    const std::lock_guard guard(m_mutex);
    if (--m_holds == 0) {
        store::FileLock::releaseAndRemove(std::move(*m_lock), m_file);
        m_lock.reset();
    }
}

} // namespace tembra::token::model
