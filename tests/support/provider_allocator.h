// Every allocation of the provider, under a test's control (ELF only).
//
// For programs that load TembraKeyProvFaults, or link the provider's objects with --wrap=malloc,
// calloc, realloc and free: the wrapped functions are defined here. All functions are thread-safe.
#pragma once

#include <cstddef>
#include <functional>

namespace tembra::test {

struct ProviderAllocator {
    // Lets the nth allocation from now on fail (from 1), and with everAfter all later ones too; 0
    // lets none fail.
    static void failAt(unsigned nth, bool everAfter = false);
    // Larger blocks are always refused; 0: whatever there is.
    static void refuseAbove(std::size_t size);
    // Allocations refused since the last failAt().
    static unsigned refused();

    // Blocks that the provider holds now.
    static std::size_t live();

    // Is shown every block as it is when the provider frees it; an empty function ends that.
    using Observer = std::function<void(const unsigned char *block, std::size_t size)>;
    static void observeFrees(Observer observer);
    // Is called before every allocation and every release; an empty function ends that. To be set
    // while the provider is idle.
    static void observeCalls(std::function<void()> observer);

    // Frees a block that the provider holds and will not look at again.
    static void discard(void *block);
};

} // namespace tembra::test
