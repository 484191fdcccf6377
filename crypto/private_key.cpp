#include "private_key.h"

#include <algorithm>

#include "der.h"
#include "oids.h"
#include "pem.h"

namespace tembra::crypto {

namespace {

bool isConsistentKey(const PrivateKey &key) {
    return std::visit([](const auto &one) { return isConsistent(one); }, key);
}

template <typename Key>
std::optional<PrivateKey> either(std::optional<Key> key) {
    return key ? std::optional<PrivateKey>(std::move(*key)) : std::nullopt;
}

std::optional<PrivateKey> decodeLabelled(const PemBlock &block) {
    if (block.label == "PRIVATE KEY")
        return decodePkcs8(block.data);
    if (block.label == "RSA PRIVATE KEY")
        return either(decodePkcs1(block.data));
    return either(decodeSec1(block.data));
}

bool isPrivateKeyLabel(std::string_view label) {
    return label == "PRIVATE KEY" || label == "RSA PRIVATE KEY" || label == "EC PRIVATE KEY" ||
           label == "SM2 PRIVATE KEY";
}

} // namespace

SecretBytes encodePkcs1(const RsaPrivateKey &key) {
    DerWriter numbers;
    numbers.unsignedInteger({}).unsignedInteger(key.n).unsignedInteger(key.e);
    for (const auto number : RSA_SECRET_NUMBERS)
        numbers.unsignedInteger(key.*number);
    return DerWriter().sequence(numbers).secretBytes();
}

std::optional<RsaPrivateKey> decodePkcs1(ByteView der) {
    DerReader reader(der);
    auto numbers = reader.sequence();
    if (!numbers || !reader.atEnd() || !numbers->smallInteger(0))
        return std::nullopt;
    RsaPrivateKey key;
    const auto readInto = [&](auto &number) {
        const auto value = numbers->unsignedInteger();
        if (value)
            number.assign(value->begin(), value->end());
        return value.has_value();
    };
    const auto readSecret = [&](auto number) { return readInto(key.*number); };
    if (!readInto(key.n) || !readInto(key.e) ||
        !std::ranges::all_of(RSA_SECRET_NUMBERS, readSecret))
        return std::nullopt;
    return numbers->atEnd() ? std::optional(std::move(key)) : std::nullopt;
}

std::optional<Sm2KeyPair> decodeSec1(ByteView der) {
    DerReader reader(der);
    auto fields = reader.sequence();
    if (!fields || !reader.atEnd() || !fields->smallInteger(1))
        return std::nullopt;
    const auto d = fields->octetString();
    const auto publicKey = d ? sm2PublicKeyOf(*d) : std::nullopt;
    if (!publicKey)
        return std::nullopt;
    if (fields->nextIs(der::explicitTag(0))) {
        auto curve = fields->nested(der::explicitTag(0));
        if (!curve || !curve->oid(oids::SM2_CURVE) || !curve->atEnd())
            return std::nullopt;
    }
    if (fields->nextIs(der::explicitTag(1))) {
        auto point = fields->nested(der::explicitTag(1));
        const auto bits = point ? point->bitString() : std::nullopt;
        if (!bits || !point->atEnd() || decodeSm2Point(*bits) != publicKey)
            return std::nullopt;
    }
    if (!fields->atEnd())
        return std::nullopt;
    return Sm2KeyPair{*publicKey, SecretBytes(d->begin(), d->end())};
}

std::optional<PrivateKey> decodePkcs8(ByteView der) {
    DerReader reader(der);
    auto fields = reader.sequence();
    if (!fields || !reader.atEnd() || !fields->smallInteger(0))
        return std::nullopt;
    auto algorithm = fields->sequence();
    const auto key = fields->octetString();
    constexpr std::uint8_t attributes = der::explicitTag(0);
    if (!algorithm || !key || (fields->nextIs(attributes) && !fields->nested(attributes)) ||
        !fields->atEnd())
        return std::nullopt;
    if (algorithm->oid(oids::RSA_ENCRYPTION) && algorithm->null() && algorithm->atEnd())
        return either(decodePkcs1(*key));
    if (algorithm->oid(oids::EC_PUBLIC_KEY) && algorithm->oid(oids::SM2_CURVE) &&
        algorithm->atEnd())
        return either(decodeSec1(*key));
    return std::nullopt;
}

std::optional<PrivateKey> decodePrivateKeyPem(std::string_view pem) {
    const auto blocks = decodePem(pem);
    if (!blocks)
        return std::nullopt;
    const auto block = std::ranges::find_if(
        *blocks, [](const PemBlock &candidate) { return isPrivateKeyLabel(candidate.label); });
    if (block == blocks->end())
        return std::nullopt;
    auto key = decodeLabelled(*block);
    return key && isConsistentKey(*key) ? std::move(key) : std::nullopt;
}

} // namespace tembra::crypto
