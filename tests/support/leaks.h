// Allocations made during the life of this object are not reported as leaks, since the provider
// keeps some by contract: the container record of a deleted key pair, and with it the device.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#define TEMBRA_HAS_LEAK_CHECK 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TEMBRA_HAS_LEAK_CHECK 1
#endif
#endif

#ifdef TEMBRA_HAS_LEAK_CHECK
#include <sanitizer/lsan_interface.h>
#endif

namespace tembra::test {

struct KeptByContract {
    KeptByContract() { report(false); }
    ~KeptByContract() { report(true); }
    KeptByContract(const KeptByContract &) = delete;
    KeptByContract &operator=(const KeptByContract &) = delete;

private:
    static void report([[maybe_unused]] bool on) {
#ifdef TEMBRA_HAS_LEAK_CHECK
        on ? __lsan_enable() : __lsan_disable();
#endif
    }
};

// Reports memory leaked so far; false without a leak checker.
inline bool leaksFound() {
#ifdef TEMBRA_HAS_LEAK_CHECK
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

} // namespace tembra::test
