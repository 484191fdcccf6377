// DeviceSign: checks in their order, the sizes, the token's answers.
#include "scripted_test.h"

namespace tembra::test {
namespace {

constexpr int sm2Sign = ORVEL_PKI_ALGORITHM_SM2_SIGN;
constexpr int rsaSign = ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN;

class Sign : public ScriptedTest {
protected:
    void SetUp() override {
        ScriptedTest::SetUp();
        insert(
            {ecc("sm2", true, true), rsa("rsa", 2048, true, false), rsa("odd", 1023, true, false)});
        sm2 = pair("sm2", 2);
        rsaPair = pair("rsa", 2);
    }
    int sign(SPI_KEYPAIR_HANDLE handle, int algo, const void *tbs, int tbslen, int capacity = 256) {
        mark();
        out.assign(256, 0xEE);
        length = 77;
        return DeviceSign(handle, algo, nullptr, static_cast<const unsigned char *>(tbs), tbslen,
                          out.data(), capacity, &length);
    }
    int size(SPI_KEYPAIR_HANDLE handle, int algo, int signlen) {
        mark();
        EXPECT_EQ(DeviceSign(handle, algo, nullptr, digest, 32, nullptr, signlen, &length), 1);
        return length;
    }

    SPI_KEYPAIR_HANDLE sm2 = nullptr;
    SPI_KEYPAIR_HANDLE rsaPair = nullptr;
    Bytes out;
    int length = 0;
    const unsigned char digest[32] = {1, 2, 3};
};

TEST_F(Sign, AnswersTheSizeWithoutLookingFurther) {
    EXPECT_EQ(size(sm2, sm2Sign, 0), 80);
    EXPECT_EQ(size(sm2, rsaSign, -5), 80);
    EXPECT_EQ(size(rsaPair, rsaSign, 0), 256);
    EXPECT_EQ(size(rsaPair, 12345, 0), 256);
    EXPECT_EQ(size(pair("odd", 2), rsaSign, 0), 128);
    EXPECT_EQ(script().SKF_ECCSignData.calls() + script().SKF_RSASignData.calls(), 0);
}

TEST_F(Sign, MakesSignatures) {
    trace().setLevel("4");
    ASSERT_EQ(sign(sm2, sm2Sign, digest, 32), 1);
    out.resize(static_cast<std::size_t>(length));
    EXPECT_EQ(out, encodedSignature());
    EXPECT_TRUE(trace().contains(debug("DeviceSign", "DeviceSign success")));
    EXPECT_EQ(script().SKF_ECCSignData.argument<1>(), digest) << "passed on in place";
    EXPECT_EQ(script().SKF_ECCSignData.argument<2>(), 32u);

    ASSERT_EQ(sign(rsaPair, rsaSign, digest, 19), 1);
    EXPECT_EQ(length, 256);
    EXPECT_EQ(out, Bytes(256, 0x33));
    EXPECT_FALSE(trace().contains(debug("DeviceSign", "DeviceSign success")));
    EXPECT_EQ(sign(sm2, sm2Sign, nullptr, 0), 1) << "no bytes at all go to the token";
}

TEST_F(Sign, ChecksItsArgumentsInOrder) {
    const struct {
        SPI_KEYPAIR_HANDLE handle;
        int algo;
        const void *tbs;
        int tbslen, capacity, result;
        const char *message;
    } cases[] = {
        {nullptr, sm2Sign, digest, -1, 0, -2, "hKeypair == 0"},
        {pair("sm2", 1), rsaSign, digest, -1, 0, -1,
         "hKeypair->m_keytype != ORVEL_PKI_KEYPAIRTYPE_SIGNATURE"},
        {sm2, sm2Sign, digest, -1, 0, -1, "tbslen < 0"},
        {sm2, sm2Sign, digest, 0, 0, -1, "tbslen == 0 && tbs != 0"},
        {sm2, rsaSign, digest, 32, 0, -1, "signlen <= 0"},
        {sm2, rsaSign, digest, 32, -1, -1, "signlen <= 0"},
        {sm2, rsaSign, digest, 32, 80, -1, "algo != ORVEL_PKI_ALGORITHM_SM2_SIGN"},
        {rsaPair, sm2Sign, digest, 32, 80, -1, "algo != ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN"},
    };
    for (const auto &at : cases) {
        EXPECT_EQ(sign(at.handle, at.algo, at.tbs, at.tbslen, at.capacity), at.result)
            << at.message;
        EXPECT_EQ(trace().failures(), errors("DeviceSign", at.message));
        EXPECT_EQ(length, 77);
    }
    EXPECT_EQ(DeviceSign(sm2, sm2Sign, nullptr, digest, 32, out.data(), 80, nullptr), -1);
    EXPECT_EQ(trace().failures().back(), error("DeviceSign", "pretsignlen == 0"));
    EXPECT_EQ(script().SKF_ECCSignData.calls() + script().SKF_RSASignData.calls(), 0);
}

TEST_F(Sign, ShortBuffers) {
    EXPECT_EQ(sign(sm2, sm2Sign, digest, 32, 66), -4);
    EXPECT_EQ(trace().failures(),
              errors("DeviceSign", "signlen < sm2SignValueLen, ORVEL_PKI_MOREDATA"));
    EXPECT_EQ(sign(rsaPair, rsaSign, digest, 32, 255), 0) << "the token refuses";
}

} // namespace
} // namespace tembra::test
