// The byte sequences that travel through the kit.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tembra::crypto {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

// Text as bytes, and bytes as text; neither owns anything.
inline ByteView asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()};
}
inline std::string_view asText(ByteView bytes) {
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

// The bytes without their leading zeros; empty when all are zero.
inline ByteView withoutLeadingZeros(ByteView bytes) {
    while (!bytes.empty() && bytes.front() == 0)
        bytes = bytes.subspan(1);
    return bytes;
}

} // namespace tembra::crypto
