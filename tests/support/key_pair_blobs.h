// Key pair blobs for the containers of the token in memory, which checks no cryptography.
#pragma once

#include "memory_token.h"

namespace tembra::test {

// What an enveloped SM2 blob ("SCAENCKP") holds, field by field.
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
// A plain blob of an RSA key: what follows the modulus length comes out of the host library in
// memory as the DER.
Bytes plainRsa(int bits, const Bytes &der);

// Writes a number (4 bytes, big-endian) over bytes of a blob or behind it.
void putNumber(Bytes &blob, std::size_t at, std::uint32_t value);
void appendNumber(Bytes &blob, std::uint32_t value);

// Cut or lengthened blobs pass the header's check again.
void fixLength(Bytes &blob);

// Lets the token in memory pad as PaddingType 1 says, and the host library in memory give RSA
// ciphertexts of a modulus' length: without these two no plain RSA blob can be enveloped.
void allowPlainRsa(int bits);

} // namespace tembra::test
