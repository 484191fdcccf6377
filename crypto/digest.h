// Hashes: SM3 (GB/T 32905) and, for the RSA side, SHA-1 and SHA-256.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "bytes.h"

namespace tembra::crypto {

enum class DigestAlgorithm { sm3, sha1, sha256 };

constexpr std::size_t SM3_SIZE = 32;
using Sm3Digest = std::array<std::uint8_t, SM3_SIZE>;

// A running hash. Copies carry the state on independently. Not for use by two threads at once.
class Digest {
public:
    explicit Digest(DigestAlgorithm algorithm);
    Digest(const Digest &other);
    Digest(Digest &&other) noexcept;
    Digest &operator=(Digest other) noexcept;
    ~Digest();

    void update(ByteView data);
    // The hash of everything so far: 32 bytes (SM3, SHA-256) or 20 (SHA-1). The state is left as it
    // is, so more data can follow.
    Bytes value() const;
    // The same into a buffer of exactly that length.
    void value(std::span<std::uint8_t> out) const;

private:
    void *m_handle; // gcry_md_hd_t, kept out of this header
};

// The whole hash in one call.
Bytes digestOf(DigestAlgorithm algorithm, ByteView data);
Sm3Digest sm3(ByteView data);

} // namespace tembra::crypto
