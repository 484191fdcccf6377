#include "sm2_sign.h"

#include "sm2_curve.h"

namespace tembra::crypto {

namespace {

constexpr std::size_t MAX_SIGNER_ID = 8191; // its length in bits is stored in 16 bits

Sexp digestExpression(ByteView digest) {
    return buildSexp("(data(flags sm2)(hash sm3 %b))", static_cast<int>(digest.size()),
                     digest.data());
}

} // namespace

std::optional<Sm3Digest> sm2SignerDigest(const Sm2PublicKey &key, std::string_view signerId) {
    if (signerId.size() > MAX_SIGNER_ID)
        return std::nullopt;
    const auto bits = signerId.size() * 8;
    Bytes text = {static_cast<std::uint8_t>(bits >> 8), static_cast<std::uint8_t>(bits & 0xFF)};
    text.insert(text.end(), signerId.begin(), signerId.end());
    const Sm2Curve curve;
    for (const char *name : {"a", "b", "g.x", "g.y"}) {
        Sm2Number value{};
        store(curve.parameter(name), value);
        text.insert(text.end(), value.begin(), value.end());
    }
    text.insert(text.end(), key.x.begin(), key.x.end());
    text.insert(text.end(), key.y.begin(), key.y.end());
    return sm3(text);
}

std::optional<Sm2Signature> sm2Sign(const Sm2KeyPair &pair, ByteView digest) {
    const Mpi d = secretMpiFrom(pair.d);
    if (digest.size() != SM3_SIZE || pair.d.size() != SM2_SIZE || !Sm2Curve().isPrivateKey(d))
        return std::nullopt;
    const Sexp key = buildSexp("(private-key(ecc(curve sm2p256v1)(flags sm2)(d %M)))", d.get());
    gcry_sexp_t raw = nullptr;
    check(gcry_pk_sign(&raw, digestExpression(digest).get(), key.get()), "SM2 signature");
    const Sexp value(raw);
    Sm2Signature signature;
    store(numberIn(value, "r"), signature.r);
    store(numberIn(value, "s"), signature.s);
    return signature;
}

bool sm2Verify(const Sm2PublicKey &publicKey, ByteView digest, const Sm2Signature &signature) {
    if (digest.size() != SM3_SIZE || !isOnSm2Curve(publicKey))
        return false;
    const Sm2EncodedPoint q = encodeSm2Point(publicKey);
    const Sexp key = buildSexp("(public-key(ecc(curve sm2p256v1)(flags sm2)(q %b)))",
                               static_cast<int>(q.size()), q.data());
    const Sexp value = buildSexp("(sig-val(sm2(r %M)(s %M)))", mpiFrom(signature.r).get(),
                                 mpiFrom(signature.s).get());
    return gcry_pk_verify(value.get(), digestExpression(digest).get(), key.get()) == 0;
}

} // namespace tembra::crypto
