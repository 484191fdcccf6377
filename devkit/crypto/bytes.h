// The byte sequences that travel through the kit.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tembra::crypto {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

// The bytes without their leading zeros; empty when all are zero.
inline ByteView withoutLeadingZeros(ByteView bytes) {
    while (!bytes.empty() && bytes.front() == 0) {
        bytes = bytes.subspan(1);
    }
    return bytes;
}

} // namespace tembra::crypto
