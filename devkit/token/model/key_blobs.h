// Keys, signatures and ciphertexts in the records of GM/T 0016, and back. Numbers stand big-endian
// and right-aligned in their fields.
#pragma once

#include "refused.h"

#include "crypto/rsa.h"
#include "crypto/sm2_encrypt.h"
#include "crypto/sm2_sign.h"

namespace tembra::token::model {

RSAPUBLICKEYBLOB toBlob(const crypto::RsaPublicKey &key);
ECCPUBLICKEYBLOB toBlob(const crypto::Sm2PublicKey &key);
ECCSIGNATUREBLOB toBlob(const crypto::Sm2Signature &signature);

// Refused(SAR_INDATAERR) for a number that doesn't fit or a point that isn't on the curve.
crypto::Sm2PublicKey fromBlob(const ECCPUBLICKEYBLOB &blob);

// Reads the CipherLen bytes that follow the record as well: the caller has looked at CipherLen.
crypto::Sm2Ciphertext fromBlob(const ECCCIPHERBLOB &blob);

} // namespace tembra::token::model
