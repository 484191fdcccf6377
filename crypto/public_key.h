// Public keys as X.509 SubjectPublicKeyInfo in DER.
#pragma once

#include <optional>
#include <variant>

#include "rsa.h"
#include "sm2_key.h"

namespace tembra::crypto {

using PublicKey = std::variant<RsaPublicKey, Sm2PublicKey>;

// RSA: rsaEncryption with NULL parameters. SM2: ecPublicKey with the SM2 curve (GM/T 0006, 0009)
// and the uncompressed point. Whether a point is on the curve is not looked at.
Bytes encodePublicKey(const RsaPublicKey &key);
Bytes encodePublicKey(const Sm2PublicKey &key);

// Reads either; empty when the bytes are anything else, also with a trailing byte. RSA numbers come
// without leading zeros. That the form is right says nothing about the key: see isUsable.
std::optional<PublicKey> decodePublicKey(ByteView der);

// Whether the key can be worked with, beyond its being well formed: isUsable of rsa.h, or a point
// on the SM2 curve.
bool isUsable(const PublicKey &key);

} // namespace tembra::crypto
