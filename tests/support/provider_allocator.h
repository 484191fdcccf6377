// Controls the provider's allocations (ELF only).
//
// For programs that load TembraKeyProvFaults, or link the provider's objects with --wrap=malloc,
// calloc, realloc and free: the wrapped functions are defined here. All functions are thread-safe.
#pragma once

#include <cstddef>
#include <functional>

namespace tembra::test {

struct ProviderAllocator {
    // Makes the nth allocation from now on fail (from 1), and with everAfter all later ones; 0
    // makes none fail.
    static void failAt(unsigned nth, bool everAfter = false);
    // Larger allocations always fail; 0 removes the limit.
    static void refuseAbove(std::size_t size);
    // The number of failed allocations since the last failAt().
    static unsigned refused();

    // The number of blocks that the provider has allocated and not freed.
    static std::size_t live();

    // Called with each block before the provider frees it; an empty function ends this.
    using Observer = std::function<void(const unsigned char *block, std::size_t size)>;
    static void observeFrees(Observer observer);
    // Is called before every allocation and every release; an empty function ends that. To be set
    // while the provider is idle.
    static void observeCalls(std::function<void()> observer);

    // Frees a block of the provider that it will not access again.
    static void discard(void *block);
};

} // namespace tembra::test
