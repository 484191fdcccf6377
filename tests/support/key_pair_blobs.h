// Key pair blobs for the containers of the scripted token, which checks no cryptography.
#pragma once

#include "memory_token.h"

namespace tembra::test {

// The fields of an enveloped SM2 blob ("SCAENCKP").
struct Sm2Envelope {
    std::uint32_t curve = 7;
    Bytes x, y; // of the container's signature key
    std::uint32_t algorithm = 0x04800000;
    Bytes c2 = Bytes(16, 0xC2);         // L bytes
    Bytes privateKey = Bytes(32, 0xD0); // K bytes, encrypted
    Sm2Envelope();
    Bytes blob() const;
};

// The same for RSA.
struct RsaEnvelope {
    Bytes n, e;
    std::uint32_t algorithm = 0x04800000;
    Bytes wrappedKey;
    Bytes privateKey = Bytes(608, 0xD0);
    explicit RsaEnvelope(int bits = 1024);
    Bytes blob() const;
};

// A plain blob ("_KEYPAIR"): x, y and d of 32 bytes each.
Bytes plainSm2(const Bytes &d);
// A plain blob of an RSA key; the host library in memory returns the bytes after the modulus length
// as the DER.
Bytes plainRsa(int bits, const Bytes &der);

// Writes a number (4 bytes, big-endian) into a blob or appends it.
void putNumber(Bytes &blob, std::size_t at, std::uint32_t value);
void appendNumber(Bytes &blob, std::uint32_t value);

// Makes the length field of a truncated or extended blob correct again.
void fixLength(Bytes &blob);

// Makes the token in memory pad for PaddingType 1, and the host library in memory return RSA
// ciphertexts as long as the modulus. Enveloping a plain RSA blob needs both.
void allowPlainRsa(int bits);

} // namespace tembra::test
