// DeviceSign: checks in their order, the sizes, the token's answers.
#include "scripted_test.h"

namespace tembra::test {
namespace {

constexpr int SM2_SIGN = ORVEL_PKI_ALGORITHM_SM2_SIGN;
constexpr int RSA_SIGN = ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN;

class Sign : public ScriptedTest {
protected:
    void SetUp() override {
        ScriptedTest::SetUp();
        insert(
            {ecc("sm2", true, true), rsa("rsa", 2048, true, false), rsa("odd", 1023, true, false)});
        m_sm2 = pair("sm2", 2);
        m_rsaPair = pair("rsa", 2);
    }
    int sign(SPI_KEYPAIR_HANDLE handle, int algo, const void *tbs, int tbslen, int capacity = 256) {
        mark();
        m_out.assign(256, 0xEE);
        m_length = 77;
        return DeviceSign(handle, algo, nullptr, static_cast<const unsigned char *>(tbs), tbslen,
                          m_out.data(), capacity, &m_length);
    }
    int size(SPI_KEYPAIR_HANDLE handle, int algo, int signlen) {
        mark();
        EXPECT_EQ(DeviceSign(handle, algo, nullptr, m_digest, 32, nullptr, signlen, &m_length), 1);
        return m_length;
    }

    SPI_KEYPAIR_HANDLE m_sm2 = nullptr;
    SPI_KEYPAIR_HANDLE m_rsaPair = nullptr;
    Bytes m_out;
    int m_length = 0;
    const unsigned char m_digest[32] = {1, 2, 3};
};

TEST_F(Sign, AnswersTheSizeWithoutLookingFurther) {
    EXPECT_EQ(size(m_sm2, SM2_SIGN, 0), 80);
    EXPECT_EQ(size(m_sm2, RSA_SIGN, -5), 80);
    EXPECT_EQ(size(m_rsaPair, RSA_SIGN, 0), 256);
    EXPECT_EQ(size(m_rsaPair, 12345, 0), 256);
    EXPECT_EQ(size(pair("odd", 2), RSA_SIGN, 0), 128);
    EXPECT_EQ(script().SKF_ECCSignData.calls() + script().SKF_RSASignData.calls(), 0);
}

TEST_F(Sign, MakesSignatures) {
    trace().setLevel("4");
    ASSERT_EQ(sign(m_sm2, SM2_SIGN, m_digest, 32), 1);
    m_out.resize(static_cast<std::size_t>(m_length));
    EXPECT_EQ(m_out, encodedSignature());
    EXPECT_TRUE(trace().contains(debug("DeviceSign", "DeviceSign success")));
    EXPECT_EQ(script().SKF_ECCSignData.argument<1>(), m_digest) << "passed on in place";
    EXPECT_EQ(script().SKF_ECCSignData.argument<2>(), 32u);

    ASSERT_EQ(sign(m_rsaPair, RSA_SIGN, m_digest, 19), 1);
    EXPECT_EQ(m_length, 256);
    EXPECT_EQ(m_out, Bytes(256, 0x33));
    EXPECT_FALSE(trace().contains(debug("DeviceSign", "DeviceSign success")));
    EXPECT_EQ(sign(m_sm2, SM2_SIGN, nullptr, 0), 1) << "no bytes at all go to the token";
}

TEST_F(Sign, ChecksItsArgumentsInOrder) {
    const struct {
        SPI_KEYPAIR_HANDLE handle;
        int algo;
        const void *tbs;
        int tbslen, capacity, result;
        const char *message;
    } cases[] = {
        {nullptr, SM2_SIGN, m_digest, -1, 0, -2, "hKeypair == 0"},
        {pair("sm2", 1), RSA_SIGN, m_digest, -1, 0, -1,
         "hKeypair->m_keytype != ORVEL_PKI_KEYPAIRTYPE_SIGNATURE"},
        {m_sm2, SM2_SIGN, m_digest, -1, 0, -1, "tbslen < 0"},
        {m_sm2, SM2_SIGN, m_digest, 0, 0, -1, "tbslen == 0 && tbs != 0"},
        {m_sm2, RSA_SIGN, m_digest, 32, 0, -1, "signlen <= 0"},
        {m_sm2, RSA_SIGN, m_digest, 32, -1, -1, "signlen <= 0"},
        {m_sm2, RSA_SIGN, m_digest, 32, 80, -1, "algo != ORVEL_PKI_ALGORITHM_SM2_SIGN"},
        {m_rsaPair, SM2_SIGN, m_digest, 32, 80, -1,
         "algo != ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN"},
    };
    for (const auto &at : cases) {
        EXPECT_EQ(sign(at.handle, at.algo, at.tbs, at.tbslen, at.capacity), at.result)
            << at.message;
        EXPECT_EQ(trace().failures(), errors("DeviceSign", at.message));
        EXPECT_EQ(m_length, 77);
    }
    EXPECT_EQ(DeviceSign(m_sm2, SM2_SIGN, nullptr, m_digest, 32, m_out.data(), 80, nullptr), -1);
    EXPECT_EQ(trace().failures().back(), error("DeviceSign", "pretsignlen == 0"));
    EXPECT_EQ(script().SKF_ECCSignData.calls() + script().SKF_RSASignData.calls(), 0);
}

TEST_F(Sign, MoreThanTheTokenWasOffered) {
    for (const ULONG reported : {257u, 0x80000000u, 0xFFFFFFFFu}) {
        script().SKF_RSASignData.run([reported](auto, auto, auto, auto, ULONG *length) {
            *length = reported;
            return SAR_OK;
        });
        EXPECT_EQ(sign(m_rsaPair, RSA_SIGN, m_digest, 32, 256), 0);
        EXPECT_EQ(trace().failures(),
                  errors("DeviceSign",
                         withNumber("SKF_RSASignData returned %u bytes, more than the 256 it was "
                                    "offered",
                                    reported)));
        EXPECT_EQ(m_length, 77);
    }
}

TEST_F(Sign, ShortBuffers) {
    EXPECT_EQ(sign(m_sm2, SM2_SIGN, m_digest, 32, 66), -4);
    EXPECT_EQ(trace().failures(),
              errors("DeviceSign", "signlen < sm2SignValueLen, ORVEL_PKI_MOREDATA"));
    EXPECT_EQ(sign(m_rsaPair, RSA_SIGN, m_digest, 32, 255), 0) << "the token refuses";
}

} // namespace
} // namespace tembra::test
