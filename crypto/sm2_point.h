// The uncompressed encoding of a point: 0x04 || x || y.
#pragma once

#include <array>
#include <optional>

#include "sm2_key.h"

namespace tembra::crypto {

constexpr std::uint8_t UNCOMPRESSED_POINT = 0x04;
constexpr std::size_t SM2_POINT_SIZE = 1 + 2 * SM2_SIZE;
using Sm2EncodedPoint = std::array<std::uint8_t, SM2_POINT_SIZE>;

Sm2EncodedPoint encodeSm2Point(const Sm2PublicKey &key);

// Exactly 65 bytes; that the point is on the curve is not looked at.
std::optional<Sm2PublicKey> decodeSm2Point(ByteView encoded);

} // namespace tembra::crypto
