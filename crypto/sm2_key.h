// Keys on the recommended curve of SM2 (GB/T 32918.5). All numbers are big-endian, 32 bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "bytes.h"
#include "secret.h"

namespace tembra::crypto {

constexpr std::size_t SM2_SIZE = 32;
using Sm2Number = std::array<std::uint8_t, SM2_SIZE>;

struct Sm2PublicKey {
    Sm2Number x{};
    Sm2Number y{};

    friend bool operator==(const Sm2PublicKey &, const Sm2PublicKey &) = default;
};

struct Sm2KeyPair {
    Sm2PublicKey publicKey;
    SecretBytes d; // 32 bytes
};

Sm2KeyPair generateSm2KeyPair();

// The public key that belongs to d; empty unless d is 32 bytes and 1 <= d <= n - 2.
std::optional<Sm2PublicKey> sm2PublicKeyOf(ByteView d);

// Whether the coordinates are in the field and satisfy the curve's equation.
bool isOnSm2Curve(const Sm2PublicKey &key);

// Whether public and private key belong together.
bool isConsistent(const Sm2KeyPair &pair);

// A number of up to 32 significant bytes as exactly 32 bytes; empty if it is longer.
std::optional<Sm2Number> toSm2Number(ByteView bigEndian);

// A point in the uncompressed encoding, 0x04 || x || y. Whether it is on the curve is not checked.
constexpr std::size_t SM2_POINT_SIZE = 1 + 2 * SM2_SIZE;
using Sm2EncodedPoint = std::array<std::uint8_t, SM2_POINT_SIZE>;
Sm2EncodedPoint encodeSm2Point(const Sm2PublicKey &key);
std::optional<Sm2PublicKey> decodeSm2Point(ByteView encoded);

} // namespace tembra::crypto
