// Ends a test that hangs, and says what every thread was doing.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace tembra::test {

class Watchdog {
public:
    static constexpr std::size_t mostThreads = 16;

    explicit Watchdog(std::chrono::seconds patience);
    ~Watchdog();
    Watchdog(const Watchdog &) = delete;
    Watchdog &operator=(const Watchdog &) = delete;

    // What thread number `thread` is about to do; the text must outlive the watchdog.
    void note(std::size_t thread, const char *doing) { doing_[thread] = doing; }

private:
    void watch(std::chrono::seconds patience);

    std::array<std::atomic<const char *>, mostThreads> doing_ = {};
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::thread thread_;
};

} // namespace tembra::test
