#include "sm2_sign.h"

#include "sm2_curve.h"
#include "sm2_point.h"

namespace tembra::crypto {

namespace {

constexpr std::size_t maxSignerId = 8191; // its length in bits travels in 16 bits

Sexp digestExpression(ByteView digest) {
    return buildSexp("(data(flags sm2)(hash sm3 %b))", static_cast<int>(digest.size()),
                     digest.data());
}

} // namespace

std::optional<Sm3Digest> sm2SignerDigest(const Sm2PublicKey &key, std::string_view signerId) {
    if (signerId.size() > maxSignerId) {
        return std::nullopt;
    }
    const auto bits = signerId.size() * 8;
    Bytes text = {static_cast<std::uint8_t>(bits >> 8), static_cast<std::uint8_t>(bits & 0xFF)};
    text.insert(text.end(), signerId.begin(), signerId.end());
    const Sm2Curve curve;
    for (const char *name : {"a", "b", "g.x", "g.y"}) {
        Sm2Number value{};
        store(curve.parameter(name).get(), value);
        text.insert(text.end(), value.begin(), value.end());
    }
    text.insert(text.end(), key.x.begin(), key.x.end());
    text.insert(text.end(), key.y.begin(), key.y.end());
    return sm3(text);
}

std::optional<Sm3Digest> sm2MessageDigest(const Sm2PublicKey &key, ByteView message,
                                          std::string_view signerId) {
    const auto z = sm2SignerDigest(key, signerId);
    if (!z) {
        return std::nullopt;
    }
    Digest digest(DigestAlgorithm::sm3);
    digest.update(*z);
    digest.update(message);
    Sm3Digest out{};
    digest.value(out);
    return out;
}

std::optional<Sm2Signature> sm2Sign(const Sm2KeyPair &pair, ByteView digest) {
    if (digest.size() != sm3Size || pair.d.size() != sm2Size) {
        return std::nullopt;
    }
    const Sm2Curve curve;
    const Mpi d = secretMpiFrom(pair.d);
    if (!curve.isPrivateKey(d.get()) || !curve.contains(pair.publicKey)) {
        return std::nullopt;
    }
    const Sm2EncodedPoint q = encodeSm2Point(pair.publicKey);
    const Sexp key =
        buildSexp("(private-key(ecc(curve sm2p256v1)(flags sm2)(q %b)(d %M)))",
                  static_cast<int>(q.size()), static_cast<const void *>(q.data()), d.get());
    gcry_sexp_t raw = nullptr;
    check(gcry_pk_sign(&raw, digestExpression(digest).get(), key.get()), "SM2 signature");
    const Sexp answer(raw);
    const Mpi r = numberIn(answer, "r");
    const Mpi s = numberIn(answer, "s");
    if (!r || !s) {
        return std::nullopt;
    }
    Sm2Signature signature;
    store(r.get(), signature.r);
    store(s.get(), signature.s);
    return signature;
}

bool sm2Verify(const Sm2PublicKey &publicKey, ByteView digest, const Sm2Signature &signature) {
    if (digest.size() != sm3Size || !isOnSm2Curve(publicKey)) {
        return false;
    }
    const Sm2EncodedPoint q = encodeSm2Point(publicKey);
    const Sexp key = buildSexp("(public-key(ecc(curve sm2p256v1)(flags sm2)(q %b)))",
                               static_cast<int>(q.size()), static_cast<const void *>(q.data()));
    const Mpi r = mpiFrom(signature.r);
    const Mpi s = mpiFrom(signature.s);
    const Sexp value = buildSexp("(sig-val(sm2(r %M)(s %M)))", r.get(), s.get());
    return gcry_pk_verify(value.get(), digestExpression(digest).get(), key.get()) == 0;
}

} // namespace tembra::crypto
