// The token and the host library of the benchmarks: a call returns at once unless a time is set.
#pragma once

#include <chrono>

namespace tembra::bench {

struct NullToken {
    int containers = 1; // each with a signature and an encryption key pair
    std::chrono::nanoseconds signature{0};
    std::chrono::nanoseconds digestPiece{0};
    std::chrono::nanoseconds cipherByte{0};
};

// Changed between measurements only.
extern NullToken nullToken;

} // namespace tembra::bench
