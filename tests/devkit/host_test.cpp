// The stand-in host library through its exported functions.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <utility>

#include "crypto/public_key.h"
#include "crypto/sm2_encoding.h"
#include "crypto_text.h"
#include "host/key_pair_blob.h"
#include "platform/orvel_crypto.h"
#include "tembra_devkit_faults.h"

using namespace tembra;
using crypto::Bytes;

namespace {

// A buffer of the library's, given back at the end.
struct Buffer {
    unsigned char *data = nullptr;
    int length = -1;

    Buffer() = default;
    Buffer(const Buffer &) = delete;
    Buffer &operator=(const Buffer &) = delete;
    ~Buffer() {
        if (data != nullptr) {
            EXPECT_EQ(OrvelPKICryptoFreeMemory(data), 1);
        }
    }
    Bytes bytes() const { return {data, data + std::max(length, 0)}; }
};

int lengthOf(const auto &bytes) {
    return static_cast<int>(bytes.size());
}

class Host : public testing::Test {
protected:
    void SetUp() override {
        TembraHostKitSetFaults(nullptr);
        before_ = TembraHostKitLiveBlocks();
        device_ = OrvelPKICryptoGetPseudoDevice();
        ASSERT_NE(device_, nullptr);
    }
    void TearDown() override {
        TembraHostKitSetFaults(nullptr);
        EXPECT_EQ(OrvelPKICryptoFreeDevice(device_), 1);
        EXPECT_EQ(TembraHostKitLiveBlocks(), before_);
    }
    void *import(const Bytes &encoded) const {
        void *key = nullptr;
        EXPECT_EQ(OrvelPKICryptoImportPublicKey(device_, encoded.data(), lengthOf(encoded), &key),
                  1);
        return key;
    }
    void *device_ = nullptr;

private:
    unsigned long long before_ = 0;
};

struct DecodedPair {
    int curve = 0;
    Buffer x, y, d;

    int decode(const unsigned char *blob, int length) {
        return OrvelPKICryptoDecodeECCKeyPair(blob, length, &curve, &x.data, &x.length, &y.data,
                                              &y.length, &d.data, &d.length);
    }
};

int decodesAs(const crypto::SecretBytes &blob) {
    DecodedPair pair;
    Buffer der;
    return pair.decode(blob.data(), lengthOf(blob)) +
           OrvelPKICryptoRSAPrivKeyToDER(blob.data(), lengthOf(blob), &der.data, &der.length);
}

} // namespace

TEST_F(Host, RsaPublicKeys) {
    const auto key = *crypto::generateRsaKey(1024);
    const unsigned char exponent[] = {0, 1, 0, 1};
    Buffer encoded, n, e;
    ASSERT_EQ(OrvelPKICryptoEncodeRSAPubKey(key.n.data(), lengthOf(key.n), exponent, 4,
                                            &encoded.data, &encoded.length),
              1);
    EXPECT_EQ(encoded.bytes(), crypto::encodePublicKey(key.publicKey()));
    ASSERT_EQ(OrvelPKICryptoDecodeRSAPubKey(encoded.data, encoded.length, &n.data, &n.length,
                                            &e.data, &e.length),
              1);
    EXPECT_EQ(n.bytes(), key.n);
    EXPECT_EQ(e.bytes(), (Bytes{1, 0, 1}));

    const int algorithmRsa = 16;
    void *object = import(encoded.bytes());
    const Bytes plain(16, 0x42);
    Buffer cipher;
    ASSERT_EQ(OrvelPKICryptoPublicKeyEncrypt(object, algorithmRsa, nullptr, plain.data(), 16,
                                             &cipher.data, &cipher.length),
              1);
    EXPECT_EQ(cipher.length, 128);
    EXPECT_TRUE(std::ranges::equal(*crypto::rsaDecrypt(key, cipher.bytes()), plain));
    EXPECT_EQ(OrvelPKICryptoFreePublicKey(object), 1);
}

TEST_F(Host, Sm2PublicKeys) {
    const auto pair = crypto::generateSm2KeyPair();
    const auto &[x, y] = pair.publicKey;
    Buffer encoded, first, second;
    ASSERT_EQ(OrvelPKICryptoEncodeECCPubKey(7, x.data(), 32, y.data(), 32, &encoded.data,
                                            &encoded.length),
              1);
    EXPECT_EQ(encoded.bytes(), crypto::encodePublicKey(pair.publicKey));
    int curve = 0;
    ASSERT_EQ(OrvelPKICryptoDecodeECCPubKey(encoded.data, encoded.length, &curve, &first.data,
                                            &first.length, &second.data, &second.length),
              1);
    EXPECT_EQ(curve, 7);
    EXPECT_TRUE(std::ranges::equal(first.bytes(), x) && std::ranges::equal(second.bytes(), y));

    const int algorithmSm2 = 64, sm3 = 0x7000, other = 0x7001;
    void *object = import(encoded.bytes());
    const Bytes plain(16, 0x42);
    const std::pair<const int *, int> parameters[] = {{nullptr, 0}, {&other, 0}, {&sm3, 1}};
    for (const auto &[parameter, expected] : parameters) {
        Buffer cipher;
        ASSERT_EQ(OrvelPKICryptoPublicKeyEncrypt(object, algorithmSm2, parameter, plain.data(), 16,
                                                 &cipher.data, &cipher.length),
                  expected);
        if (expected == 1) {
            EXPECT_EQ(cipher.length, 113);
            const auto back =
                crypto::sm2Decrypt(pair.d, *crypto::parseFlatSm2Ciphertext(cipher.bytes()));
            EXPECT_TRUE(back && std::ranges::equal(*back, plain));
        }
    }
    Buffer refused;
    EXPECT_EQ(OrvelPKICryptoPublicKeyEncrypt(object, 16, nullptr, plain.data(), 16, &refused.data,
                                             &refused.length),
              0); // an RSA operation with an SM2 key
    EXPECT_EQ(OrvelPKICryptoFreePublicKey(object), 1);
}

TEST_F(Host, Signature) {
    Bytes r(32, 0x80), s(32, 0x01);
    s[0] = 0;
    Buffer der;
    ASSERT_EQ(OrvelPKICryptoEncodeECCSignature(r.data(), 32, s.data(), 32, &der.data, &der.length),
              1);
    const auto back = crypto::decodeSm2Signature(der.bytes());
    ASSERT_TRUE(back);
    EXPECT_TRUE(std::ranges::equal(back->r, r) && std::ranges::equal(back->s, s));
}

TEST_F(Host, KeysOffTheCurveOrTooSmallAreNotImported) {
    auto sm2 = crypto::generateSm2KeyPair().publicKey;
    sm2.y[3] ^= 1;
    for (const Bytes &encoded :
         {crypto::encodePublicKey(sm2), crypto::encodePublicKey(crypto::RsaPublicKey{{0x0F}, {3}}),
          Bytes{}}) {
        void *key = nullptr;
        EXPECT_EQ(OrvelPKICryptoImportPublicKey(device_, encoded.data(), lengthOf(encoded), &key),
                  0);
        EXPECT_EQ(key, nullptr);
    }
}

TEST_F(Host, KeyPairBlobs) {
    const auto pair = crypto::generateSm2KeyPair();
    const auto blob = host::encodeKeyPairBlob(pair);
    DecodedPair decoded;
    ASSERT_EQ(decoded.decode(blob.data(), lengthOf(blob)), 1);
    EXPECT_EQ(decoded.curve, 7);
    EXPECT_TRUE(std::ranges::equal(decoded.x.bytes(), pair.publicKey.x));
    EXPECT_TRUE(std::ranges::equal(decoded.y.bytes(), pair.publicKey.y));
    EXPECT_TRUE(std::ranges::equal(decoded.d.bytes(), pair.d));

    for (const unsigned bits : {1024U, 2048U}) {
        const auto key = *crypto::generateRsaKey(bits);
        const auto rsaBlob = host::encodeKeyPairBlob(key);
        Buffer der;
        ASSERT_EQ(OrvelPKICryptoRSAPrivKeyToDER(rsaBlob.data(), lengthOf(rsaBlob), &der.data,
                                                &der.length),
                  1);
        EXPECT_TRUE(std::ranges::equal(der.bytes(), crypto::encodePkcs1(key)));
        EXPECT_EQ(DecodedPair().decode(rsaBlob.data(), lengthOf(rsaBlob)), 0);
        EXPECT_EQ(rsaBlob[18] * 256 + rsaBlob[19], static_cast<int>(bits / 8));
    }
}

// In blocks of exactly the blob's size, so that a read past the end shows.
TEST_F(Host, DamagedKeyPairBlobsAreRefused) {
    for (const crypto::PrivateKey &key : {crypto::PrivateKey(crypto::generateSm2KeyPair()),
                                          crypto::PrivateKey(*crypto::generateRsaKey(1024))}) {
        const crypto::SecretBytes whole = host::encodeKeyPairBlob(key);
        ASSERT_EQ(decodesAs(whole), 1);
        for (std::size_t at = 0; at < whole.size(); ++at) {
            const auto offset = static_cast<std::ptrdiff_t>(at);
            EXPECT_EQ(decodesAs({whole.begin(), whole.begin() + offset}), 0) << "cut to " << at;
            crypto::SecretBytes changed(whole.begin(), whole.end());
            changed[at] ^= 0x01;
            EXPECT_EQ(decodesAs(changed), 0) << "low bit at " << at;
            changed[at] ^= 0xFE;
            EXPECT_EQ(decodesAs(changed), 0) << "all bits at " << at;
        }
        crypto::SecretBytes longer = whole;
        longer.push_back(0);
        EXPECT_EQ(decodesAs(longer), 0);
    }
}

TEST_F(Host, NullArgumentsAndNegativeLengthsAreRefused) {
    unsigned char byte = 1;
    unsigned char *out = nullptr;
    int length = 0;
    void *key = nullptr;
    EXPECT_EQ(OrvelPKICryptoFreeDevice(nullptr) + OrvelPKICryptoFreeMemory(nullptr) +
                  OrvelPKICryptoFreePublicKey(nullptr),
              0);
    EXPECT_EQ(OrvelPKICryptoFreeMemory(device_), 0); // another kind
    EXPECT_EQ(OrvelPKICryptoGenerateRandom(nullptr, 1, &byte), 0);
    EXPECT_EQ(OrvelPKICryptoGenerateRandom(device_, -1, &byte), 0);
    EXPECT_EQ(OrvelPKICryptoGenerateRandom(device_, 1, nullptr), 0);
    EXPECT_EQ(OrvelPKICryptoImportPublicKey(device_, nullptr, 1, &key), 0);
    EXPECT_EQ(OrvelPKICryptoImportPublicKey(device_, &byte, -1, &key), 0);
    EXPECT_EQ(OrvelPKICryptoImportPublicKey(device_, &byte, 1, nullptr), 0);
    EXPECT_EQ(OrvelPKICryptoPublicKeyEncrypt(nullptr, 16, nullptr, &byte, 1, &out, &length), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeRSAPubKey(nullptr, 1, &byte, 1, &out, &length), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeRSAPubKey(&byte, -1, &byte, 1, &out, &length), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeRSAPubKey(&byte, 1, &byte, 1, nullptr, &length), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeRSAPubKey(&byte, 1, &byte, 1, &out, nullptr), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeECCPubKey(7, &byte, 1, nullptr, 1, &out, &length), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeECCPubKey(6, &byte, 1, &byte, 1, &out, &length), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeECCPubKey(7, &byte, 1, &byte, 0, &out, &length), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeECCSignature(&byte, -1, &byte, 1, &out, &length), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeECCSignature(&byte, 1, &byte, 1, nullptr, nullptr), 0);
    EXPECT_EQ(OrvelPKICryptoRSAPrivKeyToDER(nullptr, 5, &out, &length), 0);

    const Bytes sm2 = crypto::encodePublicKey(crypto::generateSm2KeyPair().publicKey);
    EXPECT_EQ(OrvelPKICryptoDecodeECCPubKey(sm2.data(), lengthOf(sm2), &length, nullptr, &length,
                                            &out, &length),
              0);
    EXPECT_EQ(
        OrvelPKICryptoDecodeRSAPubKey(sm2.data(), lengthOf(sm2), &out, &length, &out, &length), 0);
    EXPECT_EQ(out, nullptr);
}

TEST_F(Host, CallsGoThroughTheDoor) {
    ASSERT_EQ(TembraHostKitSetFaults("OrvelPKICryptoGetPseudoDevice:1=1,"
                                     "OrvelPKICryptoGenerateRandom:2=0xFFFFFFF8"),
              1);
    EXPECT_EQ(OrvelPKICryptoGetPseudoDevice(), nullptr);
    unsigned char random[32] = {};
    EXPECT_EQ(OrvelPKICryptoGenerateRandom(device_, 32, random), 1);
    EXPECT_FALSE(std::ranges::all_of(random, [](auto byte) { return byte == 0; }));
    EXPECT_EQ(OrvelPKICryptoGenerateRandom(device_, 32, random), -8);
    EXPECT_EQ(TembraHostKitCallCount("OrvelPKICryptoGenerateRandom"), 2U);
    EXPECT_EQ(TembraHostKitCallCount(nullptr), 3U);
}
