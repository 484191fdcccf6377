#include "sm2_encoding.h"

#include <algorithm>

#include "der.h"

namespace tembra::crypto {

namespace {

// The next INTEGER as a number of 32 bytes.
std::optional<Sm2Number> readNumber(DerReader &reader) {
    const auto digits = reader.unsignedInteger();
    return digits ? toSm2Number(*digits) : std::nullopt;
}

} // namespace

Bytes encodeSm2Signature(const Sm2Signature &signature) {
    return DerWriter()
        .sequence(DerWriter().unsignedInteger(signature.r).unsignedInteger(signature.s))
        .bytes();
}

std::optional<Sm2Signature> decodeSm2Signature(ByteView der) {
    DerReader reader(der);
    auto fields = reader.sequence();
    if (!fields || !reader.atEnd())
        return std::nullopt;
    const auto r = readNumber(*fields);
    const auto s = readNumber(*fields);
    if (!r || !s || !fields->atEnd())
        return std::nullopt;
    return Sm2Signature{*r, *s};
}

Bytes flattenSm2Ciphertext(const Sm2Ciphertext &cipher) {
    Bytes out(SM2_POINT_SIZE + cipher.c2.size() + SM2_SIZE);
    auto next = std::ranges::copy(encodeSm2Point(cipher.c1), out.begin()).out;
    next = std::ranges::copy(cipher.c2, next).out;
    std::ranges::copy(cipher.c3, next);
    return out;
}

Bytes encodeSm2Ciphertext(const Sm2Ciphertext &cipher) {
    return DerWriter()
        .sequence(DerWriter()
                      .unsignedInteger(cipher.c1.x)
                      .unsignedInteger(cipher.c1.y)
                      .octetString(cipher.c3)
                      .octetString(cipher.c2))
        .bytes();
}

std::optional<Sm2Ciphertext> decodeSm2Ciphertext(ByteView der) {
    DerReader reader(der);
    auto fields = reader.sequence();
    if (!fields || !reader.atEnd())
        return std::nullopt;
    const auto x = readNumber(*fields);
    const auto y = readNumber(*fields);
    const auto c3 = fields->octetString();
    const auto c2 = fields->octetString();
    if (!x || !y || !c3 || c3->size() != SM2_SIZE || !c2 || !fields->atEnd())
        return std::nullopt;
    Sm2Ciphertext cipher{{*x, *y}, Bytes(c2->begin(), c2->end()), {}};
    std::ranges::copy(*c3, cipher.c3.begin());
    return cipher;
}

} // namespace tembra::crypto
