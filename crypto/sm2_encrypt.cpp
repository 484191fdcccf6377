#include "sm2_encrypt.h"

#include <algorithm>

#include "digest.h"
#include "sm2_curve.h"

namespace tembra::crypto {

namespace {

// The key derivation function of GB/T 32918.4 with SM3.
SecretBytes deriveKey(ByteView z, std::size_t length) {
    SecretBytes out;
    out.reserve(length + SM3_SIZE);
    Digest prefix(DigestAlgorithm::sm3);
    prefix.update(z);
    for (std::uint32_t counter = 1; out.size() < length; ++counter) {
        const std::uint8_t number[4] = {
            static_cast<std::uint8_t>(counter >> 24), static_cast<std::uint8_t>(counter >> 16),
            static_cast<std::uint8_t>(counter >> 8), static_cast<std::uint8_t>(counter)};
        Digest block = prefix;
        block.update(number);
        out.resize(out.size() + SM3_SIZE);
        block.value(std::span(out).last(SM3_SIZE));
    }
    out.resize(length);
    return out;
}

// The point that sender and recipient compute alike. Key stream and check value follow from it.
struct SharedPoint {
    SecretBytes x, y;

    explicit SharedPoint(Sm2PublicKey &point)
        : x(point.x.begin(), point.x.end()), y(point.y.begin(), point.y.end()) {
        wipe(&point, sizeof point);
    }

    SecretBytes keyStream(std::size_t length) const {
        SecretBytes z = x;
        z.insert(z.end(), y.begin(), y.end());
        return deriveKey(z, length);
    }

    Sm2Number checkValue(ByteView plain) const {
        Digest digest(DigestAlgorithm::sm3);
        digest.update(x);
        digest.update(plain);
        digest.update(y);
        Sm2Number out{};
        digest.value(out);
        return out;
    }
};

// A key stream of zeros would leave the message in clear.
bool isUsableStream(const SecretBytes &stream) {
    return stream.empty() || !withoutLeadingZeros(stream).empty();
}

template <typename Out>
Out exclusiveOr(ByteView a, const SecretBytes &stream) {
    Out out(a.size());
    std::transform(a.begin(), a.end(), stream.begin(), out.begin(),
                   [](auto x, auto y) { return static_cast<std::uint8_t>(x ^ y); });
    return out;
}

} // namespace

std::optional<Sm2Ciphertext> sm2Encrypt(const Sm2PublicKey &key, ByteView plain) {
    const Sm2Curve curve;
    if (!curve.contains(key))
        return std::nullopt;
    for (;;) {
        const Mpi k = curve.randomScalar();
        const auto c1 = curve.multiply(k, curve.generator());
        auto point = curve.multiply(k, curve.point(key));
        if (!c1 || !point)
            return std::nullopt;
        const SharedPoint shared(*point);
        const SecretBytes stream = shared.keyStream(plain.size());
        if (isUsableStream(stream))
            return Sm2Ciphertext{*c1, exclusiveOr<Bytes>(plain, stream), shared.checkValue(plain)};
    }
}

std::optional<SecretBytes> sm2Decrypt(ByteView d, const Sm2Ciphertext &cipher) {
    const Sm2Curve curve;
    const Mpi scalar = secretMpiFrom(d);
    if (d.size() != SM2_SIZE || !curve.isPrivateKey(scalar) || !curve.contains(cipher.c1))
        return std::nullopt;
    auto point = curve.multiply(scalar, curve.point(cipher.c1));
    if (!point)
        return std::nullopt;
    const SharedPoint shared(*point);
    const SecretBytes stream = shared.keyStream(cipher.c2.size());
    if (!isUsableStream(stream))
        return std::nullopt;
    auto plain = exclusiveOr<SecretBytes>(cipher.c2, stream);
    if (!equalConstantTime(shared.checkValue(plain), cipher.c3))
        return std::nullopt;
    return plain;
}

} // namespace tembra::crypto
