#include "watchdog.h"

#include <cstdio>
#include <cstdlib>

namespace tembra::test {

Watchdog::Watchdog(std::chrono::seconds patience)
    : thread_([this, patience] { watch(patience); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard guard(mutex_);
        hasEnded_ = true;
    }
    ended_.notify_one();
    thread_.join();
}

void Watchdog::watch(std::chrono::seconds patience) {
    std::unique_lock guard(mutex_);
    if (ended_.wait_for(guard, patience, [this] { return hasEnded_; }))
        return;
    std::fputs("The threads hang:\n", stderr);
    for (std::size_t i = 0; i < doing_.size(); ++i) {
        if (const char *doing = doing_[i])
            std::fprintf(stderr, "  %zu: %s\n", i, doing);
    }
    std::abort();
}

} // namespace tembra::test
