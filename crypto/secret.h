// Memory that forgets: buffers for keys, PINs and plaintext.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "bytes.h"

namespace tembra::crypto {

// Overwrites memory with zeros in a way that the optimiser keeps.
void wipe(void *memory, std::size_t length) noexcept;

// std::allocator that wipes every block before it is released, so a vector also leaves nothing
// behind when it grows.
template <typename T>
struct WipingAllocator {
    using value_type = T;

    WipingAllocator() noexcept = default;
    template <typename U>
    WipingAllocator(const WipingAllocator<U> &) noexcept {}

    T *allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
    void deallocate(T *block, std::size_t count) noexcept {
        wipe(block, count * sizeof(T));
        std::allocator<T>().deallocate(block, count);
    }
    friend bool operator==(const WipingAllocator &, const WipingAllocator &) noexcept {
        return true;
    }
};

// A vector of bytes, wiped when it is destroyed or reallocated. Shrinking it (resize, clear) does
// not wipe the bytes given up; that happens when the block goes.
using SecretBytes = std::vector<std::uint8_t, WipingAllocator<std::uint8_t>>;

// Compares without telling by its duration where the first difference is. Different lengths
// compare unequal at once.
bool equalConstantTime(ByteView a, ByteView b) noexcept;

} // namespace tembra::crypto
