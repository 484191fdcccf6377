// Hashes: SM3 (GB/T 32905) and, for the RSA side, SHA-1 and SHA-256.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "bytes.h"

struct gcry_md_handle; // libgcrypt's

namespace tembra::crypto {

enum class DigestAlgorithm { sm3, sha1, sha256 };

constexpr std::size_t SM3_SIZE = 32;
using Sm3Digest = std::array<std::uint8_t, SM3_SIZE>;

// A running hash. A copy continues independently. Not for use by two threads at once.
class Digest {
public:
    explicit Digest(DigestAlgorithm algorithm);
    Digest(const Digest &other);

    void update(ByteView data);
    // The hash of the data so far: 32 bytes (SM3, SHA-256) or 20 (SHA-1). More data may follow.
    Bytes value() const;
    // The same into a buffer of exactly that length.
    void value(std::span<std::uint8_t> out) const;

private:
    struct Closer {
        void operator()(gcry_md_handle *handle) const noexcept;
    };
    std::unique_ptr<gcry_md_handle, Closer> m_handle;
};

Bytes digestOf(DigestAlgorithm algorithm, ByteView data);
Sm3Digest sm3(ByteView data);

} // namespace tembra::crypto
