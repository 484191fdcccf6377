// RSA with PKCS #1 v1.5 padding.
#pragma once

#include <cstddef>
#include <optional>

#include "bytes.h"
#include "secret.h"

namespace tembra::crypto {

// Big-endian numbers without leading zero bytes.
struct RsaPublicKey {
    Bytes n;
    Bytes e;

    std::size_t bits() const; // of the modulus
    friend bool operator==(const RsaPublicKey &, const RsaPublicKey &) = default;
};

// As in PKCS #1: dP = d mod (p - 1), dQ = d mod (q - 1), qInv = 1/q mod p.
struct RsaPrivateKey {
    Bytes n;
    Bytes e;
    SecretBytes d, p, q, dP, dQ, qInv;

    RsaPublicKey publicKey() const { return {n, e}; }
};

constexpr std::size_t RSA_MAX_BITS = 4096;

// A key with e = 65537; empty unless bits is 1024 or 2048.
std::optional<RsaPrivateKey> generateRsaKey(unsigned bits);

// Whether the key can be worked with: n odd and of 512 to rsaMaxBits bits, e odd and 3 <= e < n.
bool isUsable(const RsaPublicKey &key);

// Whether every private number agrees with n and e, so that the private key belongs to the public
// one. (The primes are not tested for being prime.)
bool isConsistent(const RsaPrivateKey &key);

// In the following a block is as long as the modulus, and at most that minus 11 bytes go in.
// Each answers empty (or false) when the key or a length is wrong.

// Signs the bytes as given under block type 1; a DigestInfo around a hash is the caller's business.
std::optional<Bytes> rsaSign(const RsaPrivateKey &key, ByteView data);

// Whether rsaSign with the private key made this signature of the same bytes.
bool rsaVerify(const RsaPublicKey &key, ByteView data, ByteView signature);

// Encryption under block type 2. Decryption is also empty when the padding is wrong.
std::optional<Bytes> rsaEncrypt(const RsaPublicKey &key, ByteView plain);
std::optional<SecretBytes> rsaDecrypt(const RsaPrivateKey &key, ByteView cipher);

// The DigestInfo of a SHA-256 hash (32 bytes), ready for rsaSign and rsaVerify.
Bytes sha256DigestInfo(ByteView hash);

} // namespace tembra::crypto
