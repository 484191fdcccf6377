#include "rsa.h"

#include <algorithm>
#include <bit>

#include "der.h"
#include "gcrypt_handles.h"
#include "oids.h"

namespace tembra::crypto {

namespace {

constexpr std::size_t MIN_BITS = 512;
constexpr std::size_t MAX_BITS = 4096;
constexpr std::size_t PADDING_SIZE = 11;

bool isOdd(ByteView number) {
    return !number.empty() && (number.back() & 1) != 0;
}

bool isBelow(ByteView number, ByteView modulus) {
    return number.size() == modulus.size() && std::ranges::lexicographical_compare(number, modulus);
}

bool isInputSize(std::size_t size, const RsaPublicKey &key) {
    return size != 0 && size + PADDING_SIZE <= key.n.size() && isUsable(key);
}

Sexp expressionOf(const RsaPublicKey &key) {
    return buildSexp("(public-key(rsa(n %M)(e %M)))", mpiFrom(key.n).get(), mpiFrom(key.e).get());
}

// libgcrypt's u is the inverse of p modulo q, so its p is the q of PKCS #1 and its q the p.
Sexp expressionOf(const RsaPrivateKey &key) {
    return buildSexp("(private-key(rsa(n %M)(e %M)(d %M)(p %M)(q %M)(u %M)))", mpiFrom(key.n).get(),
                     mpiFrom(key.e).get(), secretMpiFrom(key.d).get(), secretMpiFrom(key.q).get(),
                     secretMpiFrom(key.p).get(), secretMpiFrom(key.qInv).get());
}

Sexp signatureInput(ByteView data) {
    return buildSexp("(data(flags pkcs1-raw)(value %b))", static_cast<int>(data.size()),
                     data.data());
}

Mpi minusOne(const Mpi &prime) {
    Mpi out = newSecretMpi();
    gcry_mpi_sub_ui(out.get(), prime.get(), 1);
    return out;
}

Mpi remainder(const Mpi &number, const Mpi &modulus) {
    Mpi out = newSecretMpi();
    gcry_mpi_mod(out.get(), number.get(), modulus.get());
    return out;
}

bool areInverse(const Mpi &a, const Mpi &b, const Mpi &modulus) {
    const Mpi product = newSecretMpi();
    gcry_mpi_mulm(product.get(), a.get(), b.get(), modulus.get());
    return gcry_mpi_cmp_ui(product.get(), 1) == 0;
}

// Whether the stored exponent is d mod (prime - 1) and inverts e.
bool exponentFits(const Mpi &d, const Mpi &e, const Mpi &prime, const Mpi &stored) {
    const Mpi modulus = minusOne(prime);
    return gcry_mpi_cmp(remainder(d, modulus).get(), stored.get()) == 0 &&
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
    // transient-key: keys of a development token need no "very strong" random numbers.
    const Sexp parameters =
        buildSexp("(genkey(rsa(nbits %u)(rsa-use-e 5:65537)(flags transient-key)))", bits);
    gcry_sexp_t raw = nullptr;
    check(gcry_pk_genkey(&raw, parameters.get()), "RSA key generation");
    const Sexp both(raw);
    const Sexp key(gcry_sexp_find_token(both.get(), "private-key", 0));
    const Mpi d = numberIn(key, "d"), p = numberIn(key, "q"), q = numberIn(key, "p");
    const SecretBytes n = bytesOf(numberIn(key, "n")), e = bytesOf(numberIn(key, "e"));
    return RsaPrivateKey{{n.begin(), n.end()},
                         {e.begin(), e.end()},
                         bytesOf(d),
                         bytesOf(p),
                         bytesOf(q),
                         bytesOf(remainder(d, minusOne(p))),
                         bytesOf(remainder(d, minusOne(q))),
                         bytesOf(numberIn(key, "u"))};
}

bool isUsable(const RsaPublicKey &key) {
    const auto hasNoLeadingZero = [](ByteView number) { return !number.empty() && number[0] != 0; };
    if (!hasNoLeadingZero(key.n) || !hasNoLeadingZero(key.e) || key.bits() < MIN_BITS ||
        key.bits() > MAX_BITS || !isOdd(key.n) || !isOdd(key.e) || key.e == Bytes{1})
        return false;
    return key.e.size() < key.n.size() || isBelow(key.e, key.n);
}

bool isConsistent(const RsaPrivateKey &key) {
    if (!isUsable(key.publicKey()) || !isOdd(key.p) || !isOdd(key.q))
        return false;
    initialiseGcrypt();
    const Mpi n = mpiFrom(key.n), e = mpiFrom(key.e), d = secretMpiFrom(key.d);
    const Mpi p = secretMpiFrom(key.p), q = secretMpiFrom(key.q), qInv = secretMpiFrom(key.qInv);
    if (gcry_mpi_cmp_ui(p.get(), 2) <= 0 || gcry_mpi_cmp_ui(q.get(), 2) <= 0)
        return false; // the moduli below would be 0
    const Mpi product = newSecretMpi();
    gcry_mpi_mul(product.get(), p.get(), q.get());
    return gcry_mpi_cmp(product.get(), n.get()) == 0 && gcry_mpi_cmp(d.get(), n.get()) < 0 &&
           exponentFits(d, e, p, secretMpiFrom(key.dP)) &&
           exponentFits(d, e, q, secretMpiFrom(key.dQ)) && gcry_mpi_cmp(qInv.get(), p.get()) < 0 &&
           areInverse(q, qInv, p);
}

std::optional<Bytes> rsaSign(const RsaPrivateKey &key, ByteView data) {
    if (!isInputSize(data.size(), key.publicKey()))
        return std::nullopt;
    gcry_sexp_t raw = nullptr;
    if (gcry_pk_sign(&raw, signatureInput(data).get(), expressionOf(key).get()) != 0)
        return std::nullopt;
    Bytes signature(key.n.size());
    store(numberIn(Sexp(raw), "s"), signature);
    return signature;
}

bool rsaVerify(const RsaPublicKey &key, ByteView data, ByteView signature) {
    if (!isInputSize(data.size(), key) || !isBelow(signature, key.n))
        return false;
    const Sexp value = buildSexp("(sig-val(rsa(s %M)))", mpiFrom(signature).get());
    return gcry_pk_verify(value.get(), signatureInput(data).get(), expressionOf(key).get()) == 0;
}

std::optional<Bytes> rsaEncrypt(const RsaPublicKey &key, ByteView plain) {
    if (!isInputSize(plain.size(), key))
        return std::nullopt;
    const SecureMemory copy =
        secureCopy(plain); // libgcrypt keeps what is built from it secure, too
    const Sexp data = buildSexp("(data(flags pkcs1)(value %b))", static_cast<int>(plain.size()),
                                static_cast<const void *>(copy.get()));
    gcry_sexp_t raw = nullptr;
    check(gcry_pk_encrypt(&raw, data.get(), expressionOf(key).get()), "RSA encryption");
    Bytes cipher(key.n.size());
    store(numberIn(Sexp(raw), "a"), cipher);
    return cipher;
}

std::optional<SecretBytes> rsaDecrypt(const RsaPrivateKey &key, ByteView cipher) {
    if (!isUsable(key.publicKey()) || !isBelow(cipher, key.n))
        return std::nullopt;
    const Sexp data = buildSexp("(enc-val(flags pkcs1)(rsa(a %M)))", secretMpiFrom(cipher).get());
    gcry_sexp_t raw = nullptr;
    if (gcry_pk_decrypt(&raw, data.get(), expressionOf(key).get()) != 0)
        return std::nullopt;
    const Sexp plain(raw);
    std::size_t length = 0;
    const char *text = gcry_sexp_nth_data(plain.get(), 1, &length); // null for an empty message
    return SecretBytes(text, text + length);
}

Bytes sha256DigestInfo(ByteView hash) {
    return DerWriter()
        .sequence(DerWriter().sequence(DerWriter().oid(oids::SHA256).null()).octetString(hash))
        .bytes();
}

} // namespace tembra::crypto
