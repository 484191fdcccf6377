// Ciphers, RSA, PINs and encodings of the kit.
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

TEST(Sm4, PaddingAndModes) {
    const Bytes key(16, 7);
    const Bytes iv(16, 9);
    for (const Sm4Mode mode : {Sm4Mode::ecb, Sm4Mode::cbc}) {
        for (std::size_t length = 0; length <= 33; ++length) {
            const Bytes plain(length, 0x31);
            const auto cipher = sm4Encrypt(mode, Sm4Padding::pkcs7, key, iv, plain);
            ASSERT_TRUE(cipher);
            EXPECT_EQ(cipher->size(), (length / 16 + 1) * 16);
            const auto back = sm4Decrypt(mode, Sm4Padding::pkcs7, key, iv, *cipher);
            ASSERT_TRUE(back);
            EXPECT_EQ(Bytes(back->begin(), back->end()), plain);
            EXPECT_EQ(sm4Encrypt(mode, Sm4Padding::none, key, iv, plain).has_value(),
                      length % 16 == 0);
        }
    }
    const Bytes twice(32, 5);
    const auto ecb = *sm4Encrypt(Sm4Mode::ecb, Sm4Padding::none, key, {}, twice);
    const auto cbc = *sm4Encrypt(Sm4Mode::cbc, Sm4Padding::none, key, iv, twice);
    EXPECT_TRUE(std::equal(ecb.begin(), ecb.begin() + 16, ecb.begin() + 16));
    EXPECT_FALSE(std::equal(cbc.begin(), cbc.begin() + 16, cbc.begin() + 16));
}

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

TEST(Rsa, SignsAndDecrypts) {
    for (const unsigned bits : {1024U, 2048U}) {
        const auto key = generateRsaKey(bits);
        ASSERT_TRUE(key);
        EXPECT_TRUE(isConsistent(*key));
        EXPECT_EQ(key->publicKey().bits(), bits);
        const std::size_t most = bits / 8 - 11;
        for (const std::size_t length : {std::size_t{0}, std::size_t{51}, most}) {
            const Bytes data(length, 0);
            const auto signature = rsaSign(*key, data);
            ASSERT_TRUE(signature);
            EXPECT_TRUE(rsaVerify(key->publicKey(), data, *signature));
            EXPECT_FALSE(rsaVerify(key->publicKey(), Bytes(length + 1, 0), *signature));
            const auto cipher = rsaEncrypt(key->publicKey(), data);
            ASSERT_TRUE(cipher);
            const auto plain = rsaDecrypt(*key, *cipher);
            ASSERT_TRUE(plain);
            EXPECT_EQ(Bytes(plain->begin(), plain->end()), data);
            EXPECT_FALSE(rsaDecrypt(*key, *signature)); // another block type
        }
        EXPECT_FALSE(rsaSign(*key, Bytes(most + 1)));
        EXPECT_FALSE(rsaEncrypt(key->publicKey(), Bytes(most + 1)));
        EXPECT_FALSE(rsaDecrypt(*key, Bytes(bits / 8, 0xFF))); // not below the modulus
    }
    EXPECT_FALSE(generateRsaKey(1536));
}

TEST(Rsa, InconsistentKeysAreSeen) {
    for (SecretBytes RsaPrivateKey::*field :
         {&RsaPrivateKey::d, &RsaPrivateKey::p, &RsaPrivateKey::q, &RsaPrivateKey::dP,
          &RsaPrivateKey::dQ, &RsaPrivateKey::qInv}) {
        for (const int change : {0, 1, 2}) {
            RsaPrivateKey key = rsaKey();
            SecretBytes &value = key.*field;
            change == 0   ? void(value.back() ^= 2)
            : change == 1 ? value.clear()
                          : value.assign(1, 1);
            EXPECT_FALSE(isConsistent(key)) << change;
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
    const auto stored = hashPin(bytesOfText("123456"), 100);
    EXPECT_TRUE(pinMatches(bytesOfText("123456"), stored));
    EXPECT_FALSE(pinMatches(bytesOfText("123457"), stored));
    EXPECT_FALSE(pinMatches({}, stored));
    EXPECT_NE(hashPin(bytesOfText("123456"), 100).hash, stored.hash);
    for (auto broken :
         {PinHash{0, stored.salt, stored.hash}, PinHash{100, {}, stored.hash},
          PinHash{100, stored.salt, {}}, PinHash{4000000000, stored.salt, stored.hash}}) {
        EXPECT_FALSE(pinMatches(bytesOfText("123456"), broken));
    }
}

TEST(Der, MalformedElementsAreRefused) {
    const struct {
        const char *hex;
        bool good;
    } integers[] = {
        {"020100", true},
        {"02017f", true},
        {"02020080", true},
        {"0202007f", false},
        {"020180", false},
        {"0200", false}, // not minimal, negative, empty
        {"02", false},
        {"", false},
        {"020201", false},
        {"0280", false},
        {"02810101", false},
        {"0282000101", false}, // long forms
        {"0284ffffffff01", false},
        {"02850000000101", false},
        {"0401ff", false},
    };
    for (const auto &one : integers) {
        const Bytes bytes = *fromHex(one.hex);
        DerReader reader(bytes);
        EXPECT_EQ(reader.unsignedInteger().has_value(), one.good) << one.hex;
        EXPECT_EQ(reader.atEnd(), one.good || bytes.empty()) << one.hex; // untouched on failure
    }
    const Bytes bits = *fromHex("030207f0");
    EXPECT_FALSE(DerReader(bits).bitString());
}

TEST(Der, LengthsOfAllSizes) {
    for (const std::size_t length : {0, 1, 127, 128, 255, 256, 65535, 65536}) {
        const Bytes content(length, 0xA5);
        const Bytes encoded = DerWriter().octetString(content).bytes();
        DerReader reader(encoded);
        const auto back = reader.octetString();
        ASSERT_TRUE(back) << length;
        EXPECT_TRUE(std::ranges::equal(*back, content));
        EXPECT_TRUE(reader.atEnd());
    }
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

TEST(Encodings, Sec1VariantsOfAnSm2Key) {
    const Sm2KeyPair pair = generateSm2KeyPair();
    const Bytes curve =
        DerWriter().nested(0xA0, DerWriter().oid(*fromHex("2a811ccf5501822d"))).bytes();
    const Bytes other =
        DerWriter().nested(0xA0, DerWriter().oid(*fromHex("2a8648ce3d030107"))).bytes();
    const struct {
        Bytes d, tail;
        bool good;
    } cases[] = {
        {{pair.d.begin(), pair.d.end()}, {}, true},
        {{pair.d.begin(), pair.d.end()}, curve, true},
        {{pair.d.begin(), pair.d.end()}, other, false},
        {Bytes(32, 0), {}, false},
        {Bytes(32, 0xFF), {}, false},
        {Bytes(33, 1), {}, false},
    };
    for (const auto &one : cases) {
        DerWriter fields;
        fields.unsignedInteger(Bytes{1}).octetString(one.d);
        Bytes content = fields.bytes();
        content.insert(content.end(), one.tail.begin(), one.tail.end());
        const Bytes der = DerWriter().element(der::sequence, content).bytes();
        EXPECT_EQ(decodeSec1(der).has_value(), one.good) << toHex(der);
    }
}

TEST(Text, Base64PemAndHex) {
    const struct {
        const char *text, *base64;
    } cases[] = {{"", ""},        {"f", "Zg=="},        {"fo", "Zm8="},
                 {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}};
    for (const auto &one : cases) {
        EXPECT_EQ(encodeBase64(bytesOfText(one.text)), one.base64);
        EXPECT_EQ(textOf(*decodeBase64(one.base64)), one.text);
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

TEST(Secret, WipesWhatItReleases) {
    SecretBytes::value_type memory[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    wipe(memory, sizeof memory);
    EXPECT_TRUE(std::ranges::all_of(memory, [](auto byte) { return byte == 0; }));
    EXPECT_TRUE(equalConstantTime(Bytes{1, 2}, Bytes{1, 2}));
    EXPECT_FALSE(equalConstantTime(Bytes{1, 2}, Bytes{1, 3}));
    EXPECT_FALSE(equalConstantTime(Bytes{1}, Bytes{1, 3}));
}

} // namespace tembra::crypto
