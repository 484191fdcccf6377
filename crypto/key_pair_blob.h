// The plain key pair blob, "_KEYPAIR", from which the host has a key pair imported that is not in
// an envelope. It contains the private key in clear.
//
// All numbers are u32 big-endian; byte fields are big-endian numbers.
//
//   offset  size  field
//        0     8  "_KEYPAIR"
//        8     4  algorithm: 1 RSA, 4 ECC
//
//   RSA                                          ECC
//       12     4  modulus length in bits            12     4  curve: 7, SM2
//       16     4  modulus length in bytes,          16     4  coordinate length: 32
//                 128 or 256                        20    32  x
//       20        n, as many bytes                  52    32  y
//                 e, d, p, q, dP, dQ, qInv:         84    32  d, the private key
//                 each a u32 length and the bytes
//
// Nothing follows the last field. RSA fields after n come without leading zeros.
#pragma once

#include <optional>
#include <variant>

#include "crypto/private_key.h"

namespace tembra::crypto {

// Empty if an RSA modulus has another length than 1024 or 2048 bits.
SecretBytes encodeKeyPairBlob(const PrivateKey &key);

// Empty if the blob is malformed or private and public key do not match.
std::optional<PrivateKey> decodeKeyPairBlob(ByteView blob);

} // namespace tembra::crypto
