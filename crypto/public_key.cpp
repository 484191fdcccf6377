#include "public_key.h"

#include "der.h"
#include "oids.h"

namespace tembra::crypto {

namespace {

Bytes wrap(const DerWriter &algorithm, ByteView key) {
    return DerWriter().sequence(DerWriter().sequence(algorithm).bitString(key)).bytes();
}

std::optional<PublicKey> decodeRsa(DerReader algorithm, ByteView bits) {
    DerReader outer(bits);
    auto numbers = outer.sequence();
    if (!algorithm.null() || !algorithm.atEnd() || !numbers || !outer.atEnd())
        return std::nullopt;
    const auto n = numbers->unsignedInteger();
    const auto e = numbers->unsignedInteger();
    if (!n || !e || !numbers->atEnd())
        return std::nullopt;
    return RsaPublicKey{{n->begin(), n->end()}, {e->begin(), e->end()}};
}

std::optional<PublicKey> decodeSm2(DerReader algorithm, ByteView bits) {
    if (!algorithm.oid(oids::SM2_CURVE) || !algorithm.atEnd())
        return std::nullopt;
    return decodeSm2Point(bits);
}

} // namespace

Bytes encodePublicKey(const RsaPublicKey &key) {
    const DerWriter numbers =
        DerWriter().sequence(DerWriter().unsignedInteger(key.n).unsignedInteger(key.e));
    return wrap(DerWriter().oid(oids::RSA_ENCRYPTION).null(), numbers.secretBytes());
}

Bytes encodePublicKey(const Sm2PublicKey &key) {
    return wrap(DerWriter().oid(oids::EC_PUBLIC_KEY).oid(oids::SM2_CURVE), encodeSm2Point(key));
}

std::optional<PublicKey> decodePublicKey(ByteView der) {
    DerReader reader(der);
    auto outer = reader.sequence();
    if (!outer || !reader.atEnd())
        return std::nullopt;
    auto algorithm = outer->sequence();
    const auto bits = outer->bitString();
    if (!algorithm || !bits || !outer->atEnd())
        return std::nullopt;
    if (algorithm->oid(oids::RSA_ENCRYPTION))
        return decodeRsa(*algorithm, *bits);
    return algorithm->oid(oids::EC_PUBLIC_KEY) ? decodeSm2(*algorithm, *bits) : std::nullopt;
}

bool isUsable(const PublicKey &key) {
    if (const auto *rsa = std::get_if<RsaPublicKey>(&key))
        return isUsable(*rsa);
    return isOnSm2Curve(std::get<Sm2PublicKey>(key));
}

} // namespace tembra::crypto
