#include "sm2_sign.h"

#include "sm2_curve.h"
#include "sm2_point.h"

namespace tembra::crypto {

namespace {

constexpr std::size_t MAX_SIGNER_ID = 8191; // its length in bits travels in 16 bits

// The signature of e with the random number k: r = e + x of kG, s = (k - rd) / (1 + d), modulo n.
// Empty for the few k that give no good r or s. (libgcrypt could do it, but would keep its jitter
// generator for good, which leak checkers take for a leak.)
std::optional<Sm2Signature> trySign(const Sm2Curve &curve, const Mpi &d, const Mpi &e,
                                    const Mpi &k) {
    const Mpi n = curve.parameter("n");
    const auto point = curve.multiply(k.get(), curve.generator());
    if (!point)
        return std::nullopt;
    const Mpi r = newMpi();
    gcry_mpi_addm(r.get(), e.get(), mpiFrom(point->x).get(), n.get());
    const Mpi scratch = newSecretMpi();
    gcry_mpi_addm(scratch.get(), r.get(), k.get(), n.get());
    if (gcry_mpi_cmp_ui(r.get(), 0) == 0 || gcry_mpi_cmp_ui(scratch.get(), 0) == 0)
        return std::nullopt;
    const Mpi inverse = newSecretMpi();
    gcry_mpi_add_ui(inverse.get(), d.get(), 1);
    gcry_mpi_invm(inverse.get(), inverse.get(), n.get());
    gcry_mpi_mulm(scratch.get(), r.get(), d.get(), n.get());
    gcry_mpi_subm(scratch.get(), k.get(), scratch.get(), n.get());
    gcry_mpi_mulm(scratch.get(), scratch.get(), inverse.get(), n.get());
    if (gcry_mpi_cmp_ui(scratch.get(), 0) == 0)
        return std::nullopt;
    Sm2Signature signature;
    store(r.get(), signature.r);
    store(scratch.get(), signature.s);
    return signature;
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
        store(curve.parameter(name).get(), value);
        text.insert(text.end(), value.begin(), value.end());
    }
    text.insert(text.end(), key.x.begin(), key.x.end());
    text.insert(text.end(), key.y.begin(), key.y.end());
    return sm3(text);
}

std::optional<Sm2Signature> sm2Sign(const Sm2KeyPair &pair, ByteView digest) {
    const Sm2Curve curve;
    const Mpi d = secretMpiFrom(pair.d);
    if (digest.size() != SM3_SIZE || pair.d.size() != SM2_SIZE || !curve.isPrivateKey(d.get()))
        return std::nullopt;
    for (;;)
        if (auto signature = trySign(curve, d, mpiFrom(digest), curve.randomScalar()))
            return signature;
}

bool sm2Verify(const Sm2PublicKey &publicKey, ByteView digest, const Sm2Signature &signature) {
    if (digest.size() != SM3_SIZE || !isOnSm2Curve(publicKey))
        return false;
    const Sm2EncodedPoint q = encodeSm2Point(publicKey);
    const Sexp key = buildSexp("(public-key(ecc(curve sm2p256v1)(flags sm2)(q %b)))",
                               static_cast<int>(q.size()), static_cast<const void *>(q.data()));
    const Sexp data = buildSexp("(data(flags sm2)(hash sm3 %b))", static_cast<int>(digest.size()),
                                static_cast<const void *>(digest.data()));
    const Mpi r = mpiFrom(signature.r);
    const Mpi s = mpiFrom(signature.s);
    const Sexp value = buildSexp("(sig-val(sm2(r %M)(s %M)))", r.get(), s.get());
    return gcry_pk_verify(value.get(), data.get(), key.get()) == 0;
}

} // namespace tembra::crypto
