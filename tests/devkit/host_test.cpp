// What the stand-in host library refuses; the kit_* tests of the provider cover what it does.
#include <gtest/gtest.h>

#include <tuple>
#include <type_traits>

#include "crypto/key_pair_blob.h"
#include "crypto/public_key.h"
#include "platform/orvel_crypto.h"
#include "tembra_devkit_faults.h"

using namespace tembra;
using crypto::Bytes;

namespace {

int lengthOf(const auto &bytes) {
    return static_cast<int>(bytes.size());
}

class Host : public testing::Test {
protected:
    Host() : m_sm2(crypto::encodePublicKey(m_pair.publicKey)) {
        EXPECT_EQ(import(m_sm2, &m_key), 1);
    }
    ~Host() override {
        EXPECT_EQ(OrvelPKICryptoFreePublicKey(m_key), 1);
        EXPECT_EQ(OrvelPKICryptoFreeDevice(m_device), 1);
        EXPECT_EQ(TembraHostKitLiveBlocks(), 0U);
    }
    int import(const Bytes &encoded, void **key) const {
        return OrvelPKICryptoImportPublicKey(m_device, encoded.data(), lengthOf(encoded), key);
    }

    const crypto::Sm2KeyPair m_pair = crypto::generateSm2KeyPair();
    const Bytes m_sm2;
    void *m_device = OrvelPKICryptoGetPseudoDevice();
    void *m_key = nullptr;
    unsigned char *m_out = nullptr;
    int m_length = 0;
};

// The call with each argument in turn null or negative.
template <typename... Parameters>
void expectEachRefused(int (*function)(Parameters...),
                       std::type_identity_t<Parameters>... arguments) {
    for (std::size_t spoilt = 0; spoilt < sizeof...(arguments); ++spoilt) {
        std::size_t at = 0;
        const auto given = [&]<typename Argument>(Argument argument) {
            if constexpr (std::is_pointer_v<Argument>)
                return at++ == spoilt ? nullptr : argument;
            else
                return at++ == spoilt ? -1 : argument;
        };
        EXPECT_EQ(std::apply(function, std::tuple{given(arguments)...}), 0)
            << "argument " << spoilt;
    }
}

} // namespace

TEST_F(Host, KeysOffTheCurveOrTooSmallAreNotImported) {
    auto off = m_pair.publicKey;
    off.y[3] ^= 1;
    const crypto::RsaPublicKey small = {{0x0F}, {3}};
    for (const Bytes &encoded :
         {crypto::encodePublicKey(off), crypto::encodePublicKey(small), Bytes{}}) {
        void *key = nullptr;
        EXPECT_EQ(import(encoded, &key), 0);
        EXPECT_EQ(key, nullptr);
    }
}

TEST_F(Host, NullArgumentsAndNegativeLengthsAreRefused) {
    const int sm3 = 0x7000;
    unsigned char byte = 1;
    int *const n = &m_length;
    unsigned char **const out = &m_out;
    expectEachRefused(OrvelPKICryptoFreeDevice, m_device);
    expectEachRefused(OrvelPKICryptoFreeMemory, &byte);
    expectEachRefused(OrvelPKICryptoFreePublicKey, m_key);
    expectEachRefused(OrvelPKICryptoGenerateRandom, m_device, 1, &byte);
    expectEachRefused(OrvelPKICryptoImportPublicKey, m_device, &byte, 1, &m_key);
    expectEachRefused(OrvelPKICryptoPublicKeyEncrypt, m_key, 64, &sm3, &byte, 1, out, n);
    expectEachRefused(OrvelPKICryptoEncodeRSAPubKey, &byte, 1, &byte, 1, out, n);
    expectEachRefused(OrvelPKICryptoEncodeECCPubKey, 7, &byte, 1, &byte, 1, out, n);
    expectEachRefused(OrvelPKICryptoEncodeECCSignature, &byte, 1, &byte, 1, out, n);
    const auto encrypt = [&](int algorithm, const int *hash) {
        return OrvelPKICryptoPublicKeyEncrypt(m_key, algorithm, hash, &byte, 1, out, n);
    };
    EXPECT_EQ(encrypt(64, &m_length), 0); // no hash
    EXPECT_EQ(encrypt(16, nullptr), 0);   // RSA
    EXPECT_EQ(OrvelPKICryptoEncodeECCPubKey(6, &byte, 1, &byte, 1, out, n), 0);
    EXPECT_EQ(OrvelPKICryptoEncodeECCPubKey(7, &byte, 1, &byte, 0, out, n), 0);
    EXPECT_EQ(OrvelPKICryptoFreeMemory(m_device), 0); // another kind

    const auto blob = crypto::encodeKeyPairBlob(m_pair);
    const int size = lengthOf(m_sm2), blobSize = lengthOf(blob);
    expectEachRefused(OrvelPKICryptoDecodeECCPubKey, m_sm2.data(), size, n, out, n, out, n);
    EXPECT_EQ(OrvelPKICryptoDecodeRSAPubKey(m_sm2.data(), size, out, n, out, n), 0);
    expectEachRefused(OrvelPKICryptoDecodeECCKeyPair, blob.data(), blobSize, n, out, n, out, n, out,
                      n);
    expectEachRefused(OrvelPKICryptoRSAPrivKeyToDER, blob.data(), blobSize, out, n);
    EXPECT_EQ(m_out, nullptr);
}

TEST_F(Host, CallsFollowTheFaultPlan) {
    unsigned char random = 0;
    ASSERT_EQ(TembraHostKitSetFaults("OrvelPKICryptoGenerateRandom:2=0xFFFFFFF8"), 1);
    EXPECT_EQ(OrvelPKICryptoGenerateRandom(m_device, 1, &random), 1);
    EXPECT_EQ(OrvelPKICryptoGenerateRandom(m_device, 1, &random), -8);
    EXPECT_EQ(TembraHostKitCallCount(nullptr), 2U);
    TembraHostKitSetFaults(nullptr);
}
