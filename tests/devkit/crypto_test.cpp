// Refused input and encodings. The tool's tests compare results with OpenSSL, the provider's tests
// with published examples.
#include <gtest/gtest.h>

#include <algorithm>

#include "crypto/der.h"
#include "crypto/hex.h"
#include "crypto/oids.h"
#include "crypto/pem.h"
#include "crypto/private_key.h"
#include "crypto/public_key.h"
#include "crypto/rsa.h"
#include "crypto/sm2_encoding.h"
#include "crypto/sm4.h"

namespace tembra::crypto {

namespace {

const RsaPrivateKey &rsaKey() {
    static const RsaPrivateKey key = *generateRsaKey(1024);
    return key;
}

// Decodes every prefix of the bytes, and the bytes with one more, from blocks of exactly that size,
// so that a read past the end is detected.
template <typename Decode>
void expectOnlyWholeDecodes(ByteView whole, Decode decode) {
    EXPECT_TRUE(decode(whole));
    Bytes cut;
    for (const std::uint8_t byte : whole) {
        EXPECT_FALSE(decode(Bytes(cut))) << "cut to " << cut.size();
        cut.push_back(byte);
    }
    cut.push_back(0);
    EXPECT_FALSE(decode(cut));
}

} // namespace

TEST(Sm4, Refusals) {
    const Bytes key(16);
    EXPECT_FALSE(sm4Encrypt(Sm4Mode::ecb, Sm4Padding::none, Bytes(15), {}, key));
    EXPECT_FALSE(sm4Encrypt(Sm4Mode::cbc, Sm4Padding::none, key, Bytes(15), key));
    for (const char *padding : {"00000000", "00000011", "00000302", "04030404"}) {
        const Bytes plain = *fromHex("010101010101010101010101" + std::string(padding));
        const auto cipher = sm4Encrypt(Sm4Mode::ecb, Sm4Padding::none, key, {}, plain);
        EXPECT_FALSE(sm4Decrypt(Sm4Mode::ecb, Sm4Padding::pkcs7, key, {}, *cipher)) << padding;
    }
    EXPECT_FALSE(sm4Decrypt(Sm4Mode::ecb, Sm4Padding::pkcs7, key, {}, {}));
}

TEST(Rsa, InputOfAWrongLengthOrPaddingIsRefused) {
    const RsaPublicKey key = rsaKey().publicKey();
    const Bytes data(117, 1), signature = rsaSign(rsaKey(), data).value();
    EXPECT_TRUE(rsaVerify(key, data, signature));
    EXPECT_FALSE(rsaVerify(key, data, Bytes(127, 1)));
    EXPECT_FALSE(rsaVerify(key, data, Bytes(128, 0xFF))); // not below the modulus
    EXPECT_TRUE(
        std::ranges::equal(rsaDecrypt(rsaKey(), rsaEncrypt(key, data).value()).value(), data));
    for (const std::size_t length : {0U, 118U}) {
        EXPECT_FALSE(rsaSign(rsaKey(), Bytes(length)));
        EXPECT_FALSE(rsaEncrypt(key, Bytes(length)));
        EXPECT_FALSE(rsaVerify(key, Bytes(length), signature));
    }
    EXPECT_FALSE(rsaDecrypt(rsaKey(), Bytes(127, 1)));
    EXPECT_FALSE(rsaDecrypt(rsaKey(), Bytes(128, 1))); // no padding of an encryption
    EXPECT_FALSE(rsaDecrypt(rsaKey(), signature));
    EXPECT_FALSE(rsaDecrypt(rsaKey(), Bytes(128, 0xFF)));
}

TEST(Rsa, UnusableKeysAreSeen) {
    for (SecretBytes RsaPrivateKey::*field :
         {&RsaPrivateKey::d, &RsaPrivateKey::p, &RsaPrivateKey::q, &RsaPrivateKey::dP,
          &RsaPrivateKey::dQ, &RsaPrivateKey::qInv}) {
        RsaPrivateKey key = rsaKey();
        for (const SecretBytes &value : {SecretBytes{0}, SecretBytes{1}}) {
            key.*field = value;
            EXPECT_FALSE(isConsistent(key));
        }
    }
    const RsaPublicKey good = rsaKey().publicKey();
    for (const RsaPublicKey &bad :
         {RsaPublicKey{}, RsaPublicKey{good.n, {}}, RsaPublicKey{good.n, {1}},
          RsaPublicKey{good.n, {2}}, RsaPublicKey{good.n, good.n}, RsaPublicKey{{0}, {3}},
          RsaPublicKey{Bytes(63, 0xFF), {3}}, RsaPublicKey{Bytes(513, 0xFF), {3}}}) {
        EXPECT_FALSE(isUsable(bad));
        EXPECT_FALSE(rsaEncrypt(bad, Bytes(1)));
    }
}

TEST(Sm2, KeysOutsideTheirRangeAreRefused) {
    // The order n of the curve; the largest key is n - 2.
    Bytes d = *fromHex("FFFFFFFEFFFFFFFFFFFFFFFFFFFFFFFF7203DF6B21C6052B53BBF40939D54123");
    for (const bool isKey : {false, false, true}) {
        EXPECT_EQ(sm2PublicKeyOf(d).has_value(), isKey);
        --d.back();
    }
    EXPECT_FALSE(sm2PublicKeyOf(Bytes(32)));
    EXPECT_FALSE(sm2PublicKeyOf(Bytes(31, 1)));

    const Sm2KeyPair pair = generateSm2KeyPair();
    Sm2PublicKey off = pair.publicKey;
    EXPECT_TRUE(isOnSm2Curve(off));
    off.y[31] ^= 1;
    EXPECT_FALSE(isOnSm2Curve(off));
    EXPECT_FALSE(sm2Encrypt(off, Bytes(1)));
    off.x.fill(0xFF); // not in the field
    EXPECT_FALSE(isOnSm2Curve(off));
    EXPECT_FALSE(isOnSm2Curve(Sm2PublicKey{}));
    EXPECT_FALSE(sm2Sign(pair, Bytes(31)));
    EXPECT_FALSE(sm2SignerDigest(pair.publicKey, std::string(8192, 'x')));
}

TEST(Sm2, DamagedCiphertextsAreRefused) {
    const Sm2KeyPair pair = generateSm2KeyPair();
    // One byte in particular: every 256th key stream is the zero that must not be used.
    for (const std::size_t length : {0U, 1U, 1U, 1U, 1U, 16U, 32U, 33U, 1000U}) {
        const Sm2Ciphertext whole = sm2Encrypt(pair.publicKey, Bytes(length, 5)).value();
        EXPECT_TRUE(std::ranges::equal(sm2Decrypt(pair.d, whole).value(), Bytes(length, 5)));
        EXPECT_FALSE(sm2Decrypt(generateSm2KeyPair().d, whole));
        Sm2Ciphertext offCurve = whole, longer = whole, other = whole;
        offCurve.c1.y[31] ^= 1;
        longer.c2.push_back(0);
        other.c3[31] ^= 1;
        for (const Sm2Ciphertext &damaged : {offCurve, longer, other})
            EXPECT_FALSE(sm2Decrypt(pair.d, damaged));
    }
}

TEST(Der, NumbersAreMinimalAndNothingElseIsRead) {
    EXPECT_EQ(toHex(DerWriter().unsignedInteger({}).bytes()), "020100");
    EXPECT_EQ(toHex(DerWriter().unsignedInteger(Bytes{0, 0, 0x7F}).bytes()), "02017f");
    EXPECT_EQ(toHex(DerWriter().unsignedInteger(Bytes{0, 0x80}).bytes()), "02020080");
    // Not minimal, negative, empty; cut; long forms; no integer.
    for (const char *bad : {"0202007f", "020180", "0200", "02", "020201", "0280", "02810101",
                            "0282000101", "0284ffffffff01", "02850000000101", "0401ff", ""}) {
        const Bytes bytes = *fromHex(bad);
        DerReader reader(bytes);
        EXPECT_FALSE(reader.unsignedInteger()) << bad;
        EXPECT_EQ(reader.atEnd(), bytes.empty()) << bad << " is untouched";
    }
    const Bytes bits = *fromHex("030207f0");
    EXPECT_FALSE(DerReader(bits).bitString());
}

TEST(Encodings, RoundTripAndCutAtEveryByte) {
    const Sm2PublicKey key = generateSm2KeyPair().publicKey;
    const Bytes rsa = encodePublicKey(rsaKey().publicKey());
    Bytes sm2 = encodePublicKey(key);
    expectOnlyWholeDecodes(rsa, decodePublicKey);
    expectOnlyWholeDecodes(sm2, decodePublicKey);
    const auto curve =
        std::search(sm2.begin(), sm2.end(), oids::SM2_CURVE.begin(), oids::SM2_CURVE.end());
    std::ranges::copy(*fromHex("2A8648CE3D030107"), curve);
    EXPECT_FALSE(decodePublicKey(sm2)) << "P-256";

    const SecretBytes pkcs1 = encodePkcs1(rsaKey());
    EXPECT_EQ(encodePkcs1(*decodePkcs1(pkcs1)), pkcs1);
    expectOnlyWholeDecodes(pkcs1, decodePkcs1);

    const Sm2Ciphertext cipher = {key, {1, 2}, {}};
    const Bytes der = encodeSm2Ciphertext(cipher);
    expectOnlyWholeDecodes(der, decodeSm2Ciphertext);
    EXPECT_EQ(flattenSm2Ciphertext(*decodeSm2Ciphertext(der)), flattenSm2Ciphertext(cipher));
}

TEST(Text, DamagedPemAndHexAreRefused) {
    const auto withBody = [](std::string body) {
        return decodePem("-----BEGIN X-----\n" + std::move(body) + "\n-----END X-----\n");
    };
    EXPECT_EQ(withBody("Zm9v\r\n Zg==").value().front().data, (SecretBytes{'f', 'o', 'o', 'f'}));
    for (const char *bad :
         {"Zg=", "Zg", "Z===", "Zg==Zg==", "Zm9v!", "=m9v", "Zg=v", "Zm9vZ", "A: b"})
        EXPECT_FALSE(withBody(bad)) << bad;
    const std::string pem = encodePem("LABEL", Bytes(100, 0x5A));
    for (std::size_t length = 1; length < pem.size() - 1; ++length) {
        const auto cut = decodePem(pem.substr(0, length));
        EXPECT_TRUE(!cut || cut->empty()) << length;
    }
    EXPECT_EQ(decodePem("before\n" + pem + "between\n" + pem)->size(), 2U);
    EXPECT_FALSE(fromHex("0"));
    EXPECT_FALSE(fromHex("0g"));
}

} // namespace tembra::crypto
