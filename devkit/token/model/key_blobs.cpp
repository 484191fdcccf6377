#include "key_blobs.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace tembra::token::model {

namespace {

// The field is zeroed and at least as long as the number.
void alignRight(std::span<BYTE> field, crypto::ByteView number) {
    std::copy_backward(number.begin(), number.end(), field.end());
}

crypto::Sm2Number numberFrom(crypto::ByteView field) {
    const auto number = crypto::toSm2Number(field);
    require(number.has_value(), SAR_INDATAERR);
    return *number;
}

crypto::Sm2PublicKey pointFrom(crypto::ByteView x, crypto::ByteView y) {
    const crypto::Sm2PublicKey point{numberFrom(x), numberFrom(y)};
    require(crypto::isOnSm2Curve(point), SAR_INDATAERR);
    return point;
}

} // namespace

RSAPUBLICKEYBLOB toBlob(const crypto::RsaPublicKey &key) {
    RSAPUBLICKEYBLOB blob = {};
    require(key.n.size() <= sizeof blob.Modulus && key.e.size() <= sizeof blob.PublicExponent,
            SAR_FAIL);
    blob.AlgID = SGD_RSA;
    blob.BitLen = static_cast<ULONG>(key.bits());
    alignRight(blob.Modulus, key.n);
    alignRight(blob.PublicExponent, key.e);
    return blob;
}

ECCPUBLICKEYBLOB toBlob(const crypto::Sm2PublicKey &key) {
    ECCPUBLICKEYBLOB blob = {};
    blob.BitLen = 8 * crypto::SM2_SIZE;
    alignRight(blob.XCoordinate, key.x);
    alignRight(blob.YCoordinate, key.y);
    return blob;
}

ECCSIGNATUREBLOB toBlob(const crypto::Sm2Signature &signature) {
    ECCSIGNATUREBLOB blob = {};
    alignRight(blob.r, signature.r);
    alignRight(blob.s, signature.s);
    return blob;
}

crypto::Sm2PublicKey fromBlob(const ECCPUBLICKEYBLOB &blob) {
    require(blob.BitLen == 8 * crypto::SM2_SIZE, SAR_INDATAERR);
    return pointFrom(blob.XCoordinate, blob.YCoordinate);
}

crypto::Sm2Ciphertext fromBlob(const ECCCIPHERBLOB &blob) {
    const auto *record = reinterpret_cast<const BYTE *>(&blob);
    const crypto::ByteView c2(record + offsetof(ECCCIPHERBLOB, Cipher), blob.CipherLen);
    return {pointFrom(blob.XCoordinate, blob.YCoordinate),
            {c2.begin(), c2.end()},
            numberFrom(blob.HASH)};
}

} // namespace tembra::token::model
