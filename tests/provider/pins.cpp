// PINs, and device authentication with its peculiar key text.
#include "scripted_test.h"

#include <cstring>

namespace tembra::test {
namespace {

class Pins : public ScriptedTest {
protected:
    void SetUp() override {
        ScriptedTest::SetUp();
        insert({});
    }
    int m_tries = 77;
};

TEST_F(Pins, RefuseOtherTypes) {
    for (const int type : {0, 4, -1, 3, 2}) {
        const bool isPin = type == 2;
        if (type != 3)
            EXPECT_EQ(DeviceVerifyPwd(m_device, type, "admin-pin", &m_tries), isPin ? 1 : -1);
        EXPECT_EQ(DeviceChangePwd(m_device, type, "admin-pin", "admin-pin", &m_tries),
                  isPin ? 1 : -1);
        EXPECT_EQ(DeviceGetPwdRetryNum(m_device, type, &m_tries), isPin ? 1 : -1);
        EXPECT_EQ(DeviceUnlockPwd(m_device, type, "admin-pin", "x", &m_tries), -1);
    }
    EXPECT_EQ(script().SKF_UnblockPIN.calls(), 0);
    EXPECT_THAT(trace().failures(), IsEmpty());
}

TEST_F(Pins, TokensAlwaysGetACount) {
    EXPECT_EQ(DeviceVerifyPwd(m_device, 1, "user-pin", nullptr), 1);
    EXPECT_EQ(DeviceChangePwd(m_device, 1, "user-pin", "new", nullptr), 1);
    EXPECT_EQ(DeviceUnlockPwd(m_device, 1, "admin-pin", "new", nullptr), 1);
    EXPECT_NE(script().SKF_VerifyPIN.argument<3>(), nullptr);
    EXPECT_NE(script().SKF_ChangePIN.argument<4>(), nullptr);
    EXPECT_NE(script().SKF_UnblockPIN.argument<3>(), nullptr);
    EXPECT_EQ(DeviceVerifyPwd(m_device, 1, "wrong", &m_tries), -5);
    EXPECT_EQ(m_tries, 9);
}

TEST_F(Pins, NeedAnApplication) {
    resetDevices();
    script().memory.addDevice("blank");
    discover();
    EXPECT_EQ(DeviceVerifyPwd(m_device, 1, "x", &m_tries), 0);
    EXPECT_EQ(DeviceChangePwd(m_device, 1, "x", "y", &m_tries), 0);
    EXPECT_EQ(DeviceUnlockPwd(m_device, 1, "x", "y", &m_tries), 0);
    EXPECT_EQ(DeviceGetPwdRetryNum(m_device, 1, &m_tries), 0);
    EXPECT_THAT(trace().failures(),
                ElementsAre(error("DeviceVerifyPwd", "hDevice->m_hApp == 0"),
                            error("DeviceChangePwd", "hDevice->m_isformat == 0"),
                            error("DeviceUnlockPwd", "hDevice->m_isformat == 0"),
                            error("DeviceGetPwdRetryNum", "hDevice->m_isformat == 0")));
    EXPECT_EQ(DeviceVerifyPwd(m_device, 3, std::string(32, '0').c_str(), nullptr), 1)
        << "authentication needs only the token";
}

TEST_F(Pins, DeviceAuthenticationTurnsTextIntoAKey) {
    Bytes key, challenge, answer;
    script().SKF_SetSymmKey.run([&](auto token, BYTE *bytes, auto algorithm, auto handle) {
        key.assign(bytes, bytes + 16);
        return script().SKF_SetSymmKey.usual(token, bytes, algorithm, handle);
    });
    script().SKF_Encrypt.run([&](HANDLE handle, BYTE *in, ULONG size, BYTE *out, ULONG *outSize) {
        challenge.assign(in, in + size);
        EXPECT_EQ(*outSize, 16u);
        return script().SKF_Encrypt.usual(handle, in, size, out, outSize);
    });
    script().SKF_DevAuth.run([&](DEVHANDLE, BYTE *bytes, ULONG size) {
        answer.assign(bytes, bytes + size);
        return SAR_OK;
    });
    const std::string sevens(28, '7');
    const struct {
        std::string text;
        Bytes key;
    } cases[] = {
        {"0123456789ABCDEF0123456789abcdef",
         {0x01, 0x23, 0x45, 0x67, 0x89, 0x01, 0x23, 0x45, 0x01, 0x23, 0x45, 0x67, 0x89, 0x01, 0x23,
          0x45}},
        {"9Zz9" + sevens, {0x99, 0x99}}, // Z is 25, taken whole: 90 | 19, and 190 cut to 90, | 9
        {"ZZaz" + sevens, {0x99, 0x19}},
        {"0GG0" + sevens, {0x06, 0x60}},
    };
    for (const auto &at : cases) {
        mark();
        m_tries = 77;
        EXPECT_EQ(DeviceVerifyPwd(m_device, 3, at.text.c_str(), &m_tries), 1);
        EXPECT_EQ(m_tries, -1);
        Bytes expected = at.key;
        expected.resize(16, 0x77);
        EXPECT_EQ(key, expected) << at.text;
        EXPECT_EQ(challenge, (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(answer, toyEncrypt(expected, {}, challenge));
        EXPECT_THAT(callsSinceMark(),
                    ElementsAre("SKF_GenRandom", "SKF_SetSymmKey", "SKF_EncryptInit", "SKF_Encrypt",
                                "SKF_CloseHandle", "SKF_DevAuth"));
    }
    EXPECT_EQ(script().SKF_SetSymmKey.argument<2>(), SGD_SMS4_ECB);
    const BLOCKCIPHERPARAM none{};
    const BLOCKCIPHERPARAM used = script().SKF_EncryptInit.argument<1>();
    EXPECT_EQ(std::memcmp(&used, &none, sizeof none), 0);
}

TEST_F(Pins, DeviceAuthenticationWithMoreThanABlock) {
    script().SKF_Encrypt.run([](auto, auto, auto, auto, ULONG *length) {
        *length = 17;
        return SAR_OK;
    });
    EXPECT_EQ(DeviceVerifyPwd(m_device, 3, std::string(32, '0').c_str(), nullptr), 0);
    EXPECT_THAT(
        trace().failures(),
        ElementsAre(error("ExternalAuth", "SKF_Encrypt returned 17 bytes, more than the 16 it was "
                                          "offered")));
    EXPECT_EQ(script().SKF_DevAuth.calls(), 0);
}

TEST_F(Pins, DeviceAuthenticationRefusesOtherTexts) {
    const std::string whole(32, '0');
    std::vector<std::string> texts = {whole.substr(1), whole + "0", "", " " + whole.substr(1)};
    for (const char *last : {"-", "\xC3", "[", "@", "{", "`", ":", "/"})
        texts.push_back(whole.substr(1) + last);
    for (const std::string &text : texts) {
        mark();
        m_tries = 77;
        EXPECT_EQ(DeviceVerifyPwd(m_device, 3, text.c_str(), &m_tries), 0) << text;
        EXPECT_EQ(m_tries, -1);
        EXPECT_EQ(
            trace().failures(),
            errors("VerifySuperPwd", text.size() == 32 ? "keylen != 16" : "strlen(pwd) != 32"));
        EXPECT_THAT(callsSinceMark(), IsEmpty());
    }
}

} // namespace
} // namespace tembra::test
