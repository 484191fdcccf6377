// Public keys as X.509 SubjectPublicKeyInfo in DER.
#pragma once

#include <optional>
#include <variant>

#include "rsa.h"
#include "sm2_key.h"

namespace tembra::crypto {

using PublicKey = std::variant<RsaPublicKey, Sm2PublicKey>;

// RSA: rsaEncryption with NULL parameters. SM2: ecPublicKey with the SM2 curve (GM/T 0006, 0009)
// and the uncompressed point. Whether the point is on the curve is not checked.
Bytes encodePublicKey(const RsaPublicKey &key);
Bytes encodePublicKey(const Sm2PublicKey &key);

// Empty unless the bytes are exactly one of the two encodings. RSA numbers have no leading zeros.
// The key itself is not checked; see isUsable.
std::optional<PublicKey> decodePublicKey(ByteView der);

// RSA: as in rsa.h. SM2: whether the point is on the curve.
bool isUsable(const PublicKey &key);

} // namespace tembra::crypto
