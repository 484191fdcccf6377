// DevicePrivateKeyDecrypt: the flat SM2 ciphertext, the token's answers, buffers.
#include "scripted_test.h"

#include <cstring>

namespace tembra::test {
namespace {

constexpr int SM2_ALGO = ORVEL_PKI_ALGORITHM_SM2_ENC;
constexpr int RSA_ALGO = ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC;
constexpr int SM3 = ORVEL_PKI_ALGORITHM_SM3;

class Decrypt : public ScriptedTest {
protected:
    void SetUp() override {
        ScriptedTest::SetUp();
        insert({ecc("sm2", true, true), rsa("rsa", 2048, true, true)});
        m_sm2 = pair("sm2", 1);
        m_rsaPair = pair("rsa", 1);
        m_cipher = {4};
        for (int i = 1; i < 97 + 5; ++i)
            m_cipher.push_back(static_cast<unsigned char>(i));
    }
    int decrypt(SPI_KEYPAIR_HANDLE handle, int algo, const void *param, int cipherLength,
                int capacity) {
        mark();
        m_clear.assign(600, 0xEE);
        m_length = 77;
        return DevicePrivateKeyDecrypt(handle, algo, param, m_cipher.data(), cipherLength,
                                       m_clear.data(), capacity, &m_length);
    }
    Bytes piece(std::size_t from, std::size_t count) const {
        const auto begin = m_cipher.begin() + static_cast<std::ptrdiff_t>(from);
        return Bytes(begin, begin + static_cast<std::ptrdiff_t>(count));
    }
    Bytes masked(std::size_t from, std::size_t count) const {
        Bytes bytes = piece(from, count);
        for (unsigned char &byte : bytes)
            byte = static_cast<unsigned char>(byte ^ 0x5A);
        return bytes;
    }
    Bytes cleared() const { return Bytes(m_clear.begin(), m_clear.begin() + m_length); }

    SPI_KEYPAIR_HANDLE m_sm2 = nullptr;
    SPI_KEYPAIR_HANDLE m_rsaPair = nullptr;
    Bytes m_cipher, m_clear;
    int m_length = 0;
};

TEST_F(Decrypt, TakesTheFlatCiphertextApart) {
    Bytes blob;
    script().SKF_ECCDecrypt.run(
        [&blob](HCONTAINER container, BOOL key, ECCCIPHERBLOB *in, BYTE *out, ULONG *size) {
            const auto *bytes = reinterpret_cast<const unsigned char *>(in);
            blob.assign(bytes, bytes + 164 + in->CipherLen);
            return script().SKF_ECCDecrypt.usual(container, key, in, out, size);
        });
    ASSERT_EQ(decrypt(m_sm2, SM2_ALGO, &SM3, 102, 5), 1);
    EXPECT_EQ(m_length, 5);
    EXPECT_EQ(cleared(), masked(65, 5));
    EXPECT_EQ(script().SKF_ECCDecrypt.argument<1>(), 0);
    Bytes expected;
    for (const Bytes &field : {Bytes(32), piece(1, 32), Bytes(32), piece(33, 32), piece(70, 32),
                               Bytes{5, 0, 0, 0}, piece(65, 5)})
        expected.insert(expected.end(), field.begin(), field.end());
    EXPECT_EQ(blob, expected);
    EXPECT_EQ(decrypt(pair("sm2", 2), SM2_ALGO, &SM3, 102, 5), 1);
    EXPECT_EQ(script().SKF_ECCDecrypt.argument<1>(), 1) << "the signature key";
    EXPECT_EQ(decrypt(m_sm2, SM2_ALGO, &SM3, 97, 0), 1) << "an empty message";
    EXPECT_EQ(m_length, 0);
}

TEST_F(Decrypt, ChecksItsArguments) {
    const int otherHash = 0x7001;
    const std::string me = "DevicePrivateKeyDecrypt";
    const std::string notDecoded = error(me, "decodeSm2CipherText(cipher, cipherlen) == 0");
    const struct {
        SPI_KEYPAIR_HANDLE handle;
        int algo;
        const void *param;
        int cipherLength, capacity, result;
        const char *message;
    } cases[] = {
        {nullptr, SM2_ALGO, &SM3, 0, 5, -2, nullptr},
        {m_sm2, SM2_ALGO, &SM3, 0, 5, -1, nullptr},
        {m_sm2, SM2_ALGO, &SM3, -1, 5, -1, nullptr},
        {m_sm2, SM2_ALGO, &SM3, 102, -1, -1, nullptr},
        {m_sm2, RSA_ALGO, &SM3, 102, 5, 0, "algo != ORVEL_PKI_ALGORITHM_SM2_ENC"},
        {m_sm2, SM2_ALGO, nullptr, 102, 5, 0, "param == 0"},
        {m_sm2, SM2_ALGO, &otherHash, 102, 5, 0, "hashAlgo != ORVEL_PKI_ALGORITHM_SM3"},
        {m_rsaPair, SM2_ALGO, &SM3, 102, 5, 0, "algo != ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC"},
    };
    for (const auto &at : cases) {
        EXPECT_EQ(decrypt(at.handle, at.algo, at.param, at.cipherLength, at.capacity), at.result);
        EXPECT_EQ(trace().failures(), errors(me, at.message));
    }
    for (const int size : {1, 96}) {
        EXPECT_EQ(decrypt(m_sm2, SM2_ALGO, &SM3, size, 5), 0);
        EXPECT_THAT(trace().failures(),
                    ElementsAre(error("decodeSm2CipherText", "cipherLen < 97"), notDecoded));
    }
    m_cipher[0] = 2;
    EXPECT_EQ(decrypt(m_sm2, SM2_ALGO, &SM3, 102, 5), 0);
    EXPECT_THAT(trace().failures(), ElementsAre(notDecoded));
    EXPECT_EQ(script().SKF_ECCDecrypt.calls() + script().SKF_RSADecrypt.calls(), 0);
    EXPECT_EQ(
        DevicePrivateKeyDecrypt(m_sm2, 99, nullptr, m_cipher.data(), 7, nullptr, -3, &m_length), 1);
    EXPECT_EQ(m_length, 7) << "a size query looks at nothing else";
}

TEST_F(Decrypt, RsaNeedsNoHashAndASufficientBuffer) {
    EXPECT_EQ(decrypt(m_rsaPair, RSA_ALGO, nullptr, 102, 19), -4);
    EXPECT_EQ(m_length, 20);
    EXPECT_EQ(m_clear, Bytes(600, 0xEE));
    EXPECT_THAT(trace().failures(), IsEmpty());
    EXPECT_EQ(decrypt(m_rsaPair, RSA_ALGO, nullptr, 102, 20), 1);
    EXPECT_EQ(cleared(), masked(0, 20));
}

// Tokens that report success and a length that is not the plaintext's.
TEST_F(Decrypt, ReportedLengths) {
    const char *beyond5 = "SKF_ECCDecrypt returned %u bytes, more than the 5 it was offered";
    const char *beyond512 = "SKF_RSADecrypt returned %u bytes, more than the 512 it was offered";
    const struct {
        bool isSm2;
        ULONG reported;
        int capacity, result, length;
        const char *message;
    } cases[] = {
        {true, 3, 5, 1, 3, nullptr},
        {true, 6, 5, -4, 6, nullptr},
        {true, 0x7FFFFFFF, 600, -4, 0x7FFFFFFF, nullptr},
        {true, 6, 6, 0, 77, beyond5},
        {true, 0x80000000, 5, 0, 77, beyond5},
        {true, 0xFFFFFFFF, 600, 0, 77, beyond5},
        {false, 512, 600, 1, 512, nullptr},
        {false, 513, 512, -4, 513, nullptr},
        {false, 512, 511, -4, 512, nullptr},
        {false, 513, 513, 0, 77, beyond512},
        {false, 0x80000000, 600, 0, 77, beyond512},
    };
    for (const auto &at : cases) {
        const auto report = [&at](auto *length) {
            *length = at.reported;
            return SAR_OK;
        };
        script().SKF_ECCDecrypt.run(
            [&](auto, auto, auto, auto, ULONG *length) { return report(length); });
        script().SKF_RSADecrypt.run(
            [&](auto, auto, auto, auto, auto, ULONG *length) { return report(length); });
        EXPECT_EQ(decrypt(at.isSm2 ? m_sm2 : m_rsaPair, at.isSm2 ? SM2_ALGO : RSA_ALGO, &SM3, 102,
                          at.capacity),
                  at.result)
            << at.reported;
        EXPECT_EQ(m_length, at.length);
        if (at.result != 1)
            EXPECT_EQ(m_clear, Bytes(600, 0xEE));
        EXPECT_EQ(trace().failures(),
                  errors("DevicePrivateKeyDecrypt", withNumber(at.message, at.reported)));
    }
}

} // namespace
} // namespace tembra::test
