#include "process_lock.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace tembra::token::model {

bool ProcessLock::tryAcquire() {
    const std::lock_guard guard(mutex_);
    if (holds_ == 0) {
        auto lock = store::FileLock::tryAcquire(file_);
        if (!lock) {
            return false;
        }
        lock_.emplace(std::move(*lock));
    }
    ++holds_;
    return true;
}

// Asks again and again rather than sleeping in the system: so a thread of this process that gets
// the lock meanwhile lets this one in too, and a time limit works the same on every system.
bool ProcessLock::acquire(std::uint32_t milliseconds) {
    using namespace std::chrono;
    const auto start = steady_clock::now();
    microseconds pause(50);
    while (!tryAcquire()) {
        if (milliseconds != forever &&
            steady_clock::now() - start >= std::chrono::milliseconds(milliseconds)) {
            return false;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min<microseconds>(pause * 2, 3ms);
    }
    return true;
}

void ProcessLock::release() {
    const std::lock_guard guard(mutex_);
    if (--holds_ == 0) {
        lock_.reset();
    }
}

void ProcessLock::releaseAndRemove() {
    const std::lock_guard guard(mutex_);
    if (--holds_ == 0) {
        store::FileLock::releaseAndRemove(std::move(*lock_), file_);
        lock_.reset();
    }
}

} // namespace tembra::token::model
