// The enveloped key pair blob, "SCAENCKP": an encryption key pair on its way to one container,
// readable only by the token that holds the container's signature key.
//
// All numbers are u32 big-endian. Header: "SCAENCKP", version 1, algorithm (1 RSA, 4 ECC), length
// of what follows. Then for SM2:
//
//   curve 7 | 04 x y of the container's signature key | symmetric algorithm | 97 + L |
//   the symmetric key in SM2 ciphertext, flat, 97 + L bytes | 04 x y of the new key |
//   K | the encrypted private key, K bytes
//
// and for RSA, each field with its length before it except the algorithm:
//
//   n, e of the container's signature key | symmetric algorithm | the symmetric key in PKCS #1 v1.5
//   ciphertext | the encrypted private key, a PKCS #1 RSAPrivateKey with PKCS #7 padding
//
// The private key is encrypted with SMS4 in ECB mode under a random 16-byte key.
#pragma once

#include "crypto/private_key.h"
#include "crypto/public_key.h"

namespace tembra::tool {

// How the SM2 private key is laid out before it is encrypted.
enum class Sm2PrivateForm {
    plain, // d, 32 bytes
    gdk    // its length in bits (little-endian), d, and padding to 48 bytes
};

// Both keys are of one algorithm. Throws Failure when they are not, or when a key cannot be used.
crypto::Bytes envelopeKeyPair(const crypto::PrivateKey &key, const crypto::PublicKey &container,
                              Sm2PrivateForm form);

} // namespace tembra::tool
