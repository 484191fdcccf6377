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

// Empty if the key is not a point on the SM2 curve. The message may be empty.
std::optional<Sm2Ciphertext> sm2Encrypt(const Sm2PublicKey &key, ByteView plain);

// Empty if d is out of range, C1 is not on the curve or the check value differs.
std::optional<SecretBytes> sm2Decrypt(ByteView d, const Sm2Ciphertext &cipher);

} // namespace tembra::crypto
