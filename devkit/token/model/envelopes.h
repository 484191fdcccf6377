// Enveloped encryption key pairs from a key management centre: the private key is encrypted with a
// symmetric key, which is encrypted with the signature key of the container.
#pragma once

#include "error.h"

#include "crypto/private_key.h"

namespace tembra::token::model {

// The key pair in the envelope.
//   Error(SAR_NOTSUPPORTYETERR)  a symmetric algorithm other than SMS4 in ECB mode
//   Error(SAR_INDATALENERR)      a wrong length
//   Error(SAR_INDATAERR)         damaged, made for another key, or private and public key do not
//                                match
// SM2: the field of the private key contains, right-aligned in 64 bytes, either the encrypted d (32
// bytes) or an encrypted record: the number 256 (4 bytes, little-endian), d, 12 bytes of 0x0C.
crypto::Sm2KeyPair openEnvelope(const crypto::Sm2KeyPair &signatureKey,
                                const ENVELOPEDKEYBLOB &envelope);

// RSA: the encrypted private key is a PKCS #1 RSAPrivateKey with PKCS #7 padding.
crypto::RsaPrivateKey openEnvelope(const crypto::RsaPrivateKey &signatureKey, ULONG algorithm,
                                   crypto::ByteView wrappedKey, crypto::ByteView encryptedKey);

} // namespace tembra::token::model
