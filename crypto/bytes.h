// Byte sequences.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tembra::crypto {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

// Views of text as bytes and of bytes as text.
inline ByteView asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()};
}
inline std::string_view asText(ByteView bytes) {
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

// The bytes without leading zeros; empty if all are zero.
inline ByteView withoutLeadingZeros(ByteView bytes) {
    while (!bytes.empty() && bytes.front() == 0)
        bytes = bytes.subspan(1);
    return bytes;
}

} // namespace tembra::crypto
