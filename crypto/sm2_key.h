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

// The public key of a private one; empty unless d is 32 bytes and 1 <= d <= n - 2.
std::optional<Sm2PublicKey> sm2PublicKeyOf(ByteView d);

// Whether the coordinates are in the field and satisfy the curve's equation.
bool isOnSm2Curve(const Sm2PublicKey &key);

// Whether d is the private key of the pair's public key.
bool isConsistent(const Sm2KeyPair &pair);

// A number of up to 32 significant bytes as exactly 32; empty when it is longer.
std::optional<Sm2Number> toSm2Number(ByteView bigEndian);

} // namespace tembra::crypto
