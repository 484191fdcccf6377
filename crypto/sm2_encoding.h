// Encodings of SM2 signatures and ciphertexts.
#pragma once

#include <optional>

#include "sm2_encrypt.h"
#include "sm2_sign.h"

namespace tembra::crypto {

// DER SEQUENCE { INTEGER r, INTEGER s } (GM/T 0009), at most 72 bytes.
Bytes encodeSm2Signature(const Sm2Signature &signature);
std::optional<Sm2Signature> decodeSm2Signature(ByteView der);

// The flat form: 0x04 || x || y || C2 || C3, 97 bytes plus the message.
Bytes flattenSm2Ciphertext(const Sm2Ciphertext &cipher);

// The DER form (GM/T 0009): SEQUENCE { INTEGER x, INTEGER y, OCTET STRING C3, OCTET STRING C2 }.
Bytes encodeSm2Ciphertext(const Sm2Ciphertext &cipher);
std::optional<Sm2Ciphertext> decodeSm2Ciphertext(ByteView der);

} // namespace tembra::crypto
