// Memory for keys, PINs and plaintext that is wiped before it is released.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "bytes.h"

namespace tembra::crypto {

// Overwrites memory with zeros; the optimiser cannot remove it.
void wipe(void *memory, std::size_t length) noexcept;

// std::allocator that wipes every block before it is released, also when a vector grows.
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

// A vector of bytes, wiped when it is destroyed or reallocated, but not when it shrinks.
using SecretBytes = std::vector<std::uint8_t, WipingAllocator<std::uint8_t>>;

// Compares in a time that depends only on the lengths.
bool equalConstantTime(ByteView a, ByteView b) noexcept;

} // namespace tembra::crypto
