// Encryption key pairs under the envelope of a key management centre: the pair's private key under
// a symmetric key, and that under the container's own signature key.
#pragma once

#include "refused.h"

#include "crypto/private_key.h"

namespace tembra::token::model {

// The key pair in the envelope.
//   Refused(SAR_NOTSUPPORTYETERR)  a symmetric algorithm other than SMS4 in ECB mode
//   Refused(SAR_INDATALENERR)      a length that no envelope has
//   Refused(SAR_INDATAERR)         not made for this key, damaged, or the private key in it doesn't
//                                  belong to the public one
// SM2: the private key's field, 64 bytes right-aligned, holds either the encrypted d (32 bytes) or
// the encrypted record of the number 256 (4 bytes, little-endian), d and 12 bytes of 0x0C.
crypto::Sm2KeyPair openEnvelope(const crypto::Sm2KeyPair &signatureKey,
                                const ENVELOPEDKEYBLOB &envelope);

// RSA: the encrypted private key is a PKCS #1 RSAPrivateKey with PKCS #7 padding.
crypto::RsaPrivateKey openEnvelope(const crypto::RsaPrivateKey &signatureKey, ULONG algorithm,
                                   crypto::ByteView wrappedKey, crypto::ByteView encryptedKey);

} // namespace tembra::token::model
