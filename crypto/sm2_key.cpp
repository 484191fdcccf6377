#include "sm2_key.h"

#include <algorithm>
#include <stdexcept>

#include "sm2_curve.h"

namespace tembra::crypto {

namespace {

constexpr std::uint8_t UNCOMPRESSED_POINT = 0x04;

} // namespace

Sm2KeyPair generateSm2KeyPair() {
    const Sm2Curve curve;
    const Mpi d = curve.randomScalar();
    const auto publicKey = curve.multiply(d, curve.generator());
    if (!publicKey)
        throw std::runtime_error("SM2 key at infinity");
    Sm2KeyPair pair{*publicKey, SecretBytes(SM2_SIZE)};
    store(d, pair.d);
    return pair;
}

std::optional<Sm2PublicKey> sm2PublicKeyOf(ByteView d) {
    if (d.size() != SM2_SIZE)
        return std::nullopt;
    const Sm2Curve curve;
    const Mpi scalar = secretMpiFrom(d);
    if (!curve.isPrivateKey(scalar))
        return std::nullopt;
    return curve.multiply(scalar, curve.generator());
}

bool isOnSm2Curve(const Sm2PublicKey &key) {
    return Sm2Curve().contains(key);
}

bool isConsistent(const Sm2KeyPair &pair) {
    return sm2PublicKeyOf(pair.d) == pair.publicKey;
}

std::optional<Sm2Number> toSm2Number(ByteView bigEndian) {
    const ByteView digits = withoutLeadingZeros(bigEndian);
    if (digits.size() > SM2_SIZE)
        return std::nullopt;
    Sm2Number out{};
    std::copy(digits.begin(), digits.end(), out.end() - static_cast<std::ptrdiff_t>(digits.size()));
    return out;
}

Sm2EncodedPoint encodeSm2Point(const Sm2PublicKey &key) {
    Sm2EncodedPoint out{UNCOMPRESSED_POINT};
    std::ranges::copy(key.y, std::ranges::copy(key.x, out.begin() + 1).out);
    return out;
}

std::optional<Sm2PublicKey> decodeSm2Point(ByteView encoded) {
    if (encoded.size() != SM2_POINT_SIZE || encoded[0] != UNCOMPRESSED_POINT)
        return std::nullopt;
    Sm2PublicKey key;
    std::ranges::copy(encoded.subspan(1, SM2_SIZE), key.x.begin());
    std::ranges::copy(encoded.subspan(1 + SM2_SIZE), key.y.begin());
    return key;
}

} // namespace tembra::crypto
