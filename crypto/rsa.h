// RSA with PKCS #1 v1.5 padding.
#pragma once

#include <array>
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

// The secret numbers in the order in which encodings list them.
inline constexpr std::array RSA_SECRET_NUMBERS = {&RsaPrivateKey::d,  &RsaPrivateKey::p,
                                                  &RsaPrivateKey::q,  &RsaPrivateKey::dP,
                                                  &RsaPrivateKey::dQ, &RsaPrivateKey::qInv};

// Generates a key with e = 65537; empty unless bits is 1024 or 2048.
std::optional<RsaPrivateKey> generateRsaKey(unsigned bits);

// Whether n is odd and has 512 to 4096 bits, e is odd and 3 <= e < n.
bool isUsable(const RsaPublicKey &key);

// Whether the private numbers match each other, n and e. Primality is not tested.
bool isConsistent(const RsaPrivateKey &key);

// The functions below return empty (or false) if the key is not usable or a length is wrong.
// Signatures and ciphertexts are as long as the modulus; the input is at least 1 byte and at least
// 11 bytes shorter than the modulus.

// Signs the bytes as they are: the caller adds the DigestInfo around a hash.
std::optional<Bytes> rsaSign(const RsaPrivateKey &key, ByteView data);
bool rsaVerify(const RsaPublicKey &key, ByteView data, ByteView signature);

std::optional<Bytes> rsaEncrypt(const RsaPublicKey &key, ByteView plain);
// Also empty if the padding is wrong.
std::optional<SecretBytes> rsaDecrypt(const RsaPrivateKey &key, ByteView cipher);

// The DigestInfo of a SHA-256 hash (32 bytes), ready for rsaSign and rsaVerify.
Bytes sha256DigestInfo(ByteView hash);

} // namespace tembra::crypto
