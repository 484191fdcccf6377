// The stand-in host library through its exported functions.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <type_traits>

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

// The call with each argument in turn null or negative.
template <typename... Parameters>
void expectEachRefused(int (*function)(Parameters...),
                       std::type_identity_t<Parameters>... arguments) {
    for (std::size_t spoilt = 0; spoilt < sizeof...(arguments); ++spoilt) {
        std::size_t at = 0;
        const auto given = [&]<typename Argument>(Argument argument) {
            if constexpr (std::is_pointer_v<Argument>) {
                return at++ == spoilt ? nullptr : argument;
            } else {
                return at++ == spoilt ? -1 : argument;
            }
        };
        EXPECT_EQ(std::apply(function, std::tuple{given(arguments)...}), 0)
            << "argument " << spoilt;
    }
}

} // namespace

TEST_F(Host, EncryptionTakesTheAlgorithmAndHashOfTheKey) {
    const auto pair = crypto::generateSm2KeyPair();
    void *key = import(crypto::encodePublicKey(pair.publicKey));
    const int sm2 = 64, rsa = 16, sm3 = 0x7000, otherHash = 0x7001;
    const Bytes plain(16, 0x42);
    Buffer cipher;
    const auto encrypt = [&](int algorithm, const int *hash) {
        return OrvelPKICryptoPublicKeyEncrypt(key, algorithm, hash, plain.data(), 16, &cipher.data,
                                              &cipher.length);
    };
    EXPECT_EQ(encrypt(sm2, nullptr), 0);
    EXPECT_EQ(encrypt(sm2, &otherHash), 0);
    EXPECT_EQ(encrypt(rsa, nullptr), 0);
    ASSERT_EQ(encrypt(sm2, &sm3), 1);
    const auto flat = crypto::parseFlatSm2Ciphertext(cipher.bytes());
    EXPECT_TRUE(std::ranges::equal(crypto::sm2Decrypt(pair.d, flat.value()).value(), plain));
    EXPECT_EQ(OrvelPKICryptoFreePublicKey(key), 1);
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

TEST_F(Host, NullArgumentsAndNegativeLengthsAreRefused) {
    void *key = import(crypto::encodePublicKey(crypto::generateSm2KeyPair().publicKey));
    const int sm3 = 0x7000;
    unsigned char byte = 1;
    unsigned char *out = nullptr;
    int length = 0;
    expectEachRefused(OrvelPKICryptoFreeDevice, device_);
    expectEachRefused(OrvelPKICryptoFreeMemory, &byte);
    expectEachRefused(OrvelPKICryptoFreePublicKey, key);
    expectEachRefused(OrvelPKICryptoGenerateRandom, device_, 1, &byte);
    expectEachRefused(OrvelPKICryptoImportPublicKey, device_, &byte, 1, &key);
    expectEachRefused(OrvelPKICryptoPublicKeyEncrypt, key, 64, &sm3, &byte, 1, &out, &length);
    expectEachRefused(OrvelPKICryptoEncodeRSAPubKey, &byte, 1, &byte, 1, &out, &length);
    expectEachRefused(OrvelPKICryptoEncodeECCPubKey, 7, &byte, 1, &byte, 1, &out, &length);
    expectEachRefused(OrvelPKICryptoEncodeECCSignature, &byte, 1, &byte, 1, &out, &length);
    EXPECT_EQ(OrvelPKICryptoEncodeECCPubKey(6, &byte, 1, &byte, 1, &out, &length), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeECCPubKey(7, &byte, 1, &byte, 0, &out, &length), 0);
    EXPECT_EQ(OrvelPKICryptoFreeMemory(device_), 0); // another kind

    const auto pair = crypto::generateSm2KeyPair();
    const Bytes open = crypto::encodePublicKey(pair.publicKey);
    const auto blob = host::encodeKeyPairBlob(pair);
    expectEachRefused(OrvelPKICryptoDecodeECCPubKey, open.data(), lengthOf(open), &length, &out,
                      &length, &out, &length);
    EXPECT_EQ(
        OrvelPKICryptoDecodeRSAPubKey(open.data(), lengthOf(open), &out, &length, &out, &length),
        0);
    expectEachRefused(OrvelPKICryptoDecodeECCKeyPair, blob.data(), lengthOf(blob), &length, &out,
                      &length, &out, &length, &out, &length);
    expectEachRefused(OrvelPKICryptoRSAPrivKeyToDER, blob.data(), lengthOf(blob), &out, &length);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(OrvelPKICryptoFreePublicKey(key), 1);
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
