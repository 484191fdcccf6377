// Encryption to an SM2 public key (GB/T 32918.4).
#pragma once

#include <cstddef>
#include <optional>

#include "sm2_key.h"

namespace tembra::crypto {

struct Sm2Ciphertext {
    Sm2PublicKey c1; // the sender's ephemeral point
    Bytes c2;        // the encrypted message, as long as the message
    Sm2Number c3{};  // the SM3 check value
};

// The key derivation function of GB/T 32918 with SM3: length bytes from the shared value z.
SecretBytes sm2Kdf(ByteView z, std::size_t length);

// Empty when the key is not a point of the curve. An empty message is allowed (c2 is then empty).
std::optional<Sm2Ciphertext> sm2Encrypt(const Sm2PublicKey &key, ByteView plain);

// d is 32 bytes. Empty when C1 is not on the curve, the check value differs or d is out of range.
std::optional<SecretBytes> sm2Decrypt(ByteView d, const Sm2Ciphertext &cipher);

} // namespace tembra::crypto
