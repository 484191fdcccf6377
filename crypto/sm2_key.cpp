#include "sm2_key.h"

#include <algorithm>
#include <stdexcept>

#include "sm2_curve.h"

namespace tembra::crypto {

Sm2KeyPair generateSm2KeyPair() {
    const Sm2Curve curve;
    const Mpi d = curve.randomScalar();
    const auto publicKey = curve.multiply(d.get(), curve.generator());
    if (!publicKey)
        throw std::logic_error("SM2 key at infinity");
    Sm2KeyPair pair{*publicKey, SecretBytes(SM2_SIZE)};
    store(d.get(), pair.d);
    return pair;
}

std::optional<Sm2PublicKey> sm2PublicKeyOf(ByteView d) {
    if (d.size() != SM2_SIZE)
        return std::nullopt;
    const Sm2Curve curve;
    const Mpi scalar = secretMpiFrom(d);
    if (!curve.isPrivateKey(scalar.get()))
        return std::nullopt;
    return curve.multiply(scalar.get(), curve.generator());
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

} // namespace tembra::crypto
