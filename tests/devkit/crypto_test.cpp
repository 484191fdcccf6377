// What the kit's cryptography refuses, and its encodings.
#include <gtest/gtest.h>

#include <algorithm>

#include "crypto/der.h"
#include "crypto/hex.h"
#include "crypto/pem.h"
#include "crypto/pin_hash.h"
#include "crypto/private_key.h"
#include "crypto/public_key.h"
#include "crypto/sm2_encoding.h"
#include "crypto/sm4.h"
#include "crypto_text.h"

namespace tembra::crypto {

namespace {

const RsaPrivateKey &rsaKey() {
    static const RsaPrivateKey key = *generateRsaKey(1024);
    return key;
}

// Every shorter piece of the bytes, and the bytes with one more, in blocks of exactly that size, so
// that a read past the end shows.
template <typename Decode>
void expectOnlyWholeDecodes(ByteView whole, Decode decode) {
    EXPECT_TRUE(decode(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(decode(cut)) << "cut to " << length;
    }
    Bytes longer(whole.begin(), whole.end());
    longer.push_back(0);
    EXPECT_FALSE(decode(longer));
}

} // namespace

TEST(Sm4, Refusals) {
    const Bytes key(16);
    EXPECT_FALSE(sm4Encrypt(Sm4Mode::ecb, Sm4Padding::none, Bytes(15), {}, key));
    EXPECT_FALSE(sm4Encrypt(Sm4Mode::cbc, Sm4Padding::none, key, Bytes(15), key));
    EXPECT_FALSE(sm4EncryptBlock(key, Bytes(32)));
    for (const char *padding : {"00000000", "00000011", "00000302", "04030404"}) {
        Bytes plain(12, 1);
        const Bytes tail = *fromHex(padding);
        plain.insert(plain.end(), tail.begin(), tail.end());
        const auto cipher = sm4Encrypt(Sm4Mode::ecb, Sm4Padding::none, key, {}, plain);
        EXPECT_FALSE(sm4Decrypt(Sm4Mode::ecb, Sm4Padding::pkcs7, key, {}, *cipher)) << padding;
    }
    EXPECT_FALSE(sm4Decrypt(Sm4Mode::ecb, Sm4Padding::pkcs7, key, {}, {}));
}

TEST(Rsa, BlocksOfTheWrongKindOrSize) {
    const RsaPublicKey open = rsaKey().publicKey();
    for (const std::size_t length : {0U, 117U}) {
        const Bytes data(length, 0);
        const Bytes signature = rsaSign(rsaKey(), data).value();
        EXPECT_TRUE(rsaVerify(open, data, signature));
        EXPECT_FALSE(rsaVerify(open, Bytes(length + 1, 0), signature));
        EXPECT_FALSE(rsaDecrypt(rsaKey(), signature)); // another block type
        EXPECT_TRUE(
            std::ranges::equal(rsaDecrypt(rsaKey(), *rsaEncrypt(open, data)).value(), data));
    }
    EXPECT_FALSE(rsaSign(rsaKey(), Bytes(118)));
    EXPECT_FALSE(rsaEncrypt(open, Bytes(118)));
    EXPECT_FALSE(rsaDecrypt(rsaKey(), Bytes(128, 0xFF))); // not below the modulus
    EXPECT_FALSE(generateRsaKey(1536));
}

TEST(Rsa, InconsistentKeysAreSeen) {
    for (SecretBytes RsaPrivateKey::*field :
         {&RsaPrivateKey::d, &RsaPrivateKey::p, &RsaPrivateKey::q, &RsaPrivateKey::dP,
          &RsaPrivateKey::dQ, &RsaPrivateKey::qInv}) {
        SecretBytes changed = rsaKey().*field;
        changed.back() ^= 2;
        for (const SecretBytes &value : {changed, SecretBytes{}, SecretBytes{1}}) {
            RsaPrivateKey key = rsaKey();
            key.*field = value;
            EXPECT_FALSE(isConsistent(key));
        }
    }
    const RsaPublicKey good = rsaKey().publicKey();
    EXPECT_TRUE(isUsable(good));
    for (const RsaPublicKey &bad :
         {RsaPublicKey{}, RsaPublicKey{good.n, {}}, RsaPublicKey{good.n, {1}},
          RsaPublicKey{good.n, {2}}, RsaPublicKey{good.n, good.n}, RsaPublicKey{{0}, {3}},
          RsaPublicKey{Bytes(63, 0xFF), {3}}, RsaPublicKey{Bytes(513, 0xFF), {3}}}) {
        EXPECT_FALSE(isUsable(bad));
        EXPECT_FALSE(rsaEncrypt(bad, Bytes(1)));
    }
}

TEST(PinHash, TellsPinsApart) {
    const Bytes pin = bytesOfText("123456");
    const auto stored = hashPin(pin, 100);
    EXPECT_TRUE(pinMatches(pin, stored));
    EXPECT_FALSE(pinMatches(bytesOfText("123457"), stored));
    EXPECT_FALSE(pinMatches({}, stored));
    EXPECT_NE(hashPin(pin, 100).hash, stored.hash);
    for (const auto &broken :
         {PinHash{0, stored.salt, stored.hash}, PinHash{100, {}, stored.hash},
          PinHash{100, stored.salt, {}}, PinHash{4000000000, stored.salt, stored.hash}}) {
        EXPECT_FALSE(pinMatches(pin, broken));
    }
}

TEST(Der, MalformedElementsAreRefused) {
    for (const char *good : {"020100", "02017f", "02020080"}) {
        const Bytes bytes = *fromHex(good);
        DerReader reader(bytes);
        EXPECT_TRUE(reader.unsignedInteger()) << good;
        EXPECT_TRUE(reader.atEnd()) << good;
    }
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
    const Sm2KeyPair pair = generateSm2KeyPair();
    const Bytes rsa = encodePublicKey(rsaKey().publicKey());
    const Bytes sm2 = encodePublicKey(pair.publicKey);
    EXPECT_EQ(std::get<RsaPublicKey>(*decodePublicKey(rsa)), rsaKey().publicKey());
    EXPECT_EQ(std::get<Sm2PublicKey>(*decodePublicKey(sm2)), pair.publicKey);
    expectOnlyWholeDecodes(rsa, decodePublicKey);
    expectOnlyWholeDecodes(sm2, decodePublicKey);

    const SecretBytes pkcs1 = encodePkcs1(rsaKey());
    EXPECT_TRUE(isConsistent(*decodePkcs1(pkcs1)));
    EXPECT_EQ(encodePkcs1(*decodePkcs1(pkcs1)), pkcs1);
    expectOnlyWholeDecodes(pkcs1, decodePkcs1);

    // Leading zeros in both numbers, and the longest form.
    for (const std::uint8_t first : Bytes{0x00, 0x7F, 0xFF}) {
        Sm2Signature signature;
        signature.r.fill(0x11);
        signature.r[0] = first;
        signature.s[31] = first;
        const Bytes der = encodeSm2Signature(signature);
        EXPECT_EQ(decodeSm2Signature(der), signature);
        expectOnlyWholeDecodes(der, decodeSm2Signature);
    }
    const Sm2Ciphertext cipher = *sm2Encrypt(pair.publicKey, bytesOfText("0123456789abcdef"));
    expectOnlyWholeDecodes(encodeSm2Ciphertext(cipher), decodeSm2Ciphertext);
    const Bytes flat = flattenSm2Ciphertext(cipher);
    EXPECT_EQ(flat.size(), 97U + 16U);
    EXPECT_EQ(flattenSm2Ciphertext(*decodeSm2Ciphertext(encodeSm2Ciphertext(cipher))), flat);
    EXPECT_EQ(flattenSm2Ciphertext(*parseFlatSm2Ciphertext(flat)), flat);
    EXPECT_FALSE(parseFlatSm2Ciphertext(ByteView(flat).first(96)));
    EXPECT_TRUE(parseFlatSm2Ciphertext(ByteView(flat).first(97)));
}

TEST(Text, Base64PemAndHex) {
    for (const char *good : {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE="}) {
        const std::string text = textOf(decodeBase64(good).value());
        EXPECT_EQ(text, std::string_view("fooba").substr(0, text.size()));
        EXPECT_EQ(encodeBase64(bytesOfText(text)), good);
    }
    for (const char *bad : {"Zg=", "Zg", "Z===", "Zg==Zg==", "Zm9v!", "Zh==", "=m9v", "Zg=v"}) {
        EXPECT_FALSE(decodeBase64(bad)) << bad;
    }
    const Bytes data(100, 0x5A);
    const std::string pem = encodePem("ONE", data) + "text\n" + encodePem("TWO", {});
    const auto blocks = decodePem("before\n" + pem);
    ASSERT_TRUE(blocks);
    ASSERT_EQ(blocks->size(), 2U);
    EXPECT_EQ((*blocks)[0].label, "ONE");
    EXPECT_TRUE(std::ranges::equal((*blocks)[0].data, data));
    EXPECT_TRUE((*blocks)[1].data.empty());
    for (std::size_t length = 1; length < encodePem("ONE", data).size() - 1; ++length) {
        const auto cut = decodePem(std::string_view(pem).substr(0, length));
        EXPECT_TRUE(!cut || cut->empty()) << length;
    }
    EXPECT_FALSE(fromHex("0"));
    EXPECT_FALSE(fromHex("0g"));
    EXPECT_EQ(toHex(*fromHex("00fFA5")), "00ffa5");
}

} // namespace tembra::crypto
