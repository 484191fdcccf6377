#include "rsa.h"

#include <algorithm>
#include <bit>

#include "der.h"
#include "gcrypt_handles.h"
#include "oids.h"
#include "rsa_padding.h"

namespace tembra::crypto {

namespace {

constexpr std::size_t RSA_MIN_BITS = 512;

bool isOdd(ByteView number) {
    return !number.empty() && (number.back() & 1) != 0;
}

// block^exponent mod n, as long as n. The block must be shorter than n, which padding guarantees.
Bytes publicOperation(const RsaPublicKey &key, ByteView block) {
    initialiseGcrypt();
    const Mpi n = mpiFrom(key.n);
    const Mpi e = mpiFrom(key.e);
    const Mpi in = mpiFrom(block);
    const Mpi out = newMpi();
    gcry_mpi_powm(out.get(), in.get(), e.get(), n.get());
    Bytes result(key.n.size());
    store(out.get(), result);
    return result;
}

// The private operation, blinded and with the remainder theorem. libgcrypt's p and q are PKCS #1's
// q and p, so that its u = 1/p mod q is qInv.
std::optional<SecretBytes> privateOperation(const RsaPrivateKey &key, ByteView block) {
    initialiseGcrypt();
    const Mpi n = mpiFrom(key.n);
    const Mpi e = mpiFrom(key.e);
    const Mpi d = secretMpiFrom(key.d);
    const Mpi p = secretMpiFrom(key.p);
    const Mpi q = secretMpiFrom(key.q);
    const Mpi qInv = secretMpiFrom(key.qInv);
    const Mpi in = secretMpiFrom(block);
    if (gcry_mpi_cmp(in.get(), n.get()) >= 0)
        return std::nullopt;
    const Sexp secret = buildSexp("(private-key(rsa(n %M)(e %M)(d %M)(p %M)(q %M)(u %M)))", n.get(),
                                  e.get(), d.get(), q.get(), p.get(), qInv.get());
    const Sexp data = buildSexp("(enc-val(flags raw)(rsa(a %M)))", in.get());
    gcry_sexp_t raw = nullptr;
    if (gcry_pk_decrypt(&raw, data.get(), secret.get()) != 0)
        return std::nullopt;
    const Mpi out = numberIn(Sexp(raw), "value");
    if (!out)
        return std::nullopt;
    SecretBytes result(key.n.size());
    store(out.get(), result);
    return result;
}

// number mod (prime - 1)
Mpi reduced(const Mpi &number, const Mpi &prime) {
    Mpi modulus = newSecretMpi();
    gcry_mpi_sub_ui(modulus.get(), prime.get(), 1);
    Mpi out = newSecretMpi();
    gcry_mpi_mod(out.get(), number.get(), modulus.get());
    return out;
}

// Whether a * b = 1 mod modulus.
bool areInverse(const Mpi &a, const Mpi &b, const Mpi &modulus) {
    const Mpi product = newSecretMpi();
    gcry_mpi_mulm(product.get(), a.get(), b.get(), modulus.get());
    return gcry_mpi_cmp_ui(product.get(), 1) == 0;
}

// Whether the exponent d' = d mod (prime - 1) is the stored one and undoes e.
bool exponentFits(const Mpi &d, const Mpi &e, const Mpi &prime, const Mpi &stored) {
    const Mpi modulus = newSecretMpi();
    gcry_mpi_sub_ui(modulus.get(), prime.get(), 1);
    return gcry_mpi_cmp(reduced(d, prime).get(), stored.get()) == 0 &&
           areInverse(e, stored, modulus);
}

} // namespace

std::size_t RsaPublicKey::bits() const {
    return n.empty() ? 0 : (n.size() - 1) * 8 + static_cast<std::size_t>(std::bit_width(n[0]));
}

std::optional<RsaPrivateKey> generateRsaKey(unsigned bits) {
    if (bits != 1024 && bits != 2048)
        return std::nullopt;
    initialiseGcrypt();
    // The flag asks for the same random numbers that the other keys are made of; without it
    // libgcrypt mixes in its jitter generator, whose memory it keeps for good.
    const Sexp wish =
        buildSexp("(genkey(rsa(nbits %u)(rsa-use-e 5:65537)(flags transient-key)))", bits);
    gcry_sexp_t raw = nullptr;
    check(gcry_pk_genkey(&raw, wish.get()), "RSA key generation");
    const Sexp both(raw);
    const Sexp secret(gcry_sexp_find_token(both.get(), "private-key", 0));
    const Mpi n = numberIn(secret, "n"), e = numberIn(secret, "e"), d = numberIn(secret, "d");
    const Mpi p = numberIn(secret, "q"), q = numberIn(secret, "p"), qInv = numberIn(secret, "u");
    const SecretBytes modulus = bytesOf(n.get());
    const SecretBytes exponent = bytesOf(e.get());
    return RsaPrivateKey{{modulus.begin(), modulus.end()},
                         {exponent.begin(), exponent.end()},
                         bytesOf(d.get()),
                         bytesOf(p.get()),
                         bytesOf(q.get()),
                         bytesOf(reduced(d, p).get()),
                         bytesOf(reduced(d, q).get()),
                         bytesOf(qInv.get())};
}

bool isUsable(const RsaPublicKey &key) {
    const auto hasNoLeadingZero = [](ByteView number) { return !number.empty() && number[0] != 0; };
    if (!hasNoLeadingZero(key.n) || !hasNoLeadingZero(key.e) || key.bits() < RSA_MIN_BITS ||
        key.bits() > RSA_MAX_BITS || !isOdd(key.n) || !isOdd(key.e) || key.e == Bytes{1})
        return false;
    return key.e.size() < key.n.size() || (key.e.size() == key.n.size() && key.e < key.n);
}

bool isConsistent(const RsaPrivateKey &key) {
    if (!isUsable(key.publicKey()) || !isOdd(key.p) || !isOdd(key.q))
        return false;
    initialiseGcrypt();
    const Mpi n = mpiFrom(key.n), e = mpiFrom(key.e), d = secretMpiFrom(key.d);
    const Mpi p = secretMpiFrom(key.p), q = secretMpiFrom(key.q);
    if (gcry_mpi_cmp_ui(p.get(), 2) <= 0 || gcry_mpi_cmp_ui(q.get(), 2) <= 0 ||
        gcry_mpi_cmp(d.get(), n.get()) >= 0)
        return false;
    const Mpi product = newSecretMpi();
    gcry_mpi_mul(product.get(), p.get(), q.get());
    const Mpi qInv = secretMpiFrom(key.qInv);
    return gcry_mpi_cmp(product.get(), n.get()) == 0 &&
           exponentFits(d, e, p, secretMpiFrom(key.dP)) &&
           exponentFits(d, e, q, secretMpiFrom(key.dQ)) && gcry_mpi_cmp(qInv.get(), p.get()) < 0 &&
           areInverse(q, qInv, p);
}

std::optional<Bytes> rsaSign(const RsaPrivateKey &key, ByteView data) {
    const auto block = padForSignature(data, key.n.size());
    if (!block || !isUsable(key.publicKey()))
        return std::nullopt;
    const auto signature = privateOperation(key, *block);
    if (!signature)
        return std::nullopt;
    return Bytes(signature->begin(), signature->end());
}

bool rsaVerify(const RsaPublicKey &key, ByteView data, ByteView signature) {
    const auto block = padForSignature(data, key.n.size());
    if (!block || !isUsable(key) || signature.size() != key.n.size() ||
        !std::ranges::lexicographical_compare(signature, key.n))
        return false;
    return equalConstantTime(publicOperation(key, signature), *block);
}

std::optional<Bytes> rsaEncrypt(const RsaPublicKey &key, ByteView plain) {
    const auto block = padForEncryption(plain, key.n.size());
    if (!block || !isUsable(key))
        return std::nullopt;
    return publicOperation(key, *block);
}

std::optional<SecretBytes> rsaDecrypt(const RsaPrivateKey &key, ByteView cipher) {
    if (!isUsable(key.publicKey()) || cipher.size() != key.n.size())
        return std::nullopt;
    const auto block = privateOperation(key, cipher);
    return block ? unpadEncryption(*block) : std::nullopt;
}

Bytes sha256DigestInfo(ByteView hash) {
    return DerWriter()
        .sequence(DerWriter().sequence(DerWriter().oid(oids::SHA256).null()).octetString(hash))
        .bytes();
}

} // namespace tembra::crypto
