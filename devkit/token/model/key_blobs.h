// Conversion of keys, signatures and ciphertexts to and from the structures of GM/T 0016, whose
// numbers are big-endian and right-aligned.
#pragma once

#include "error.h"

#include "crypto/rsa.h"
#include "crypto/sm2_encrypt.h"
#include "crypto/sm2_sign.h"

namespace tembra::token::model {

RSAPUBLICKEYBLOB toBlob(const crypto::RsaPublicKey &key);
ECCPUBLICKEYBLOB toBlob(const crypto::Sm2PublicKey &key);
ECCSIGNATUREBLOB toBlob(const crypto::Sm2Signature &signature);

// Error(SAR_INDATAERR) if a number is too long or the point is not on the curve.
crypto::Sm2PublicKey fromBlob(const ECCPUBLICKEYBLOB &blob);

// Reads the CipherLen bytes that follow the structure, too; the caller has checked CipherLen.
crypto::Sm2Ciphertext fromBlob(const ECCCIPHERBLOB &blob);

} // namespace tembra::token::model
