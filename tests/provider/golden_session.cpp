// The trace of whole sessions over the scripted token, line by line.
#include "scripted_test.h"
#include "typical_session.h"

namespace tembra::test {
namespace {

class GoldenSession : public ScriptedTest {};

TEST_F(GoldenSession, MatchesLineByLine) {
    ApplicationModel &application = addToken({ecc(SESSION_LABEL, true, false)});
    application.pins[USER_TYPE] = SESSION_PIN;
    script().memory.devices.front().info.AlgSymCap = SGD_SMS4_ECB | SGD_SMS4_CBC;
    ASSERT_EQ(DeviceEnd(), 1);
    trace().setLevel("5");
    mark();
    ASSERT_EQ(DeviceInit(), 1);
    EXPECT_EQ(runTypicalSession(), encodedSignature());
    Lines expected = goldenTrace("init");
    const Lines rest = goldenTrace("session");
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(maskedTrace(), expected);
    EXPECT_EQ(script().memory.open(), 0);
    ASSERT_EQ(DeviceInit(), 1); // the fixture ends it
}

// What the entry points say of their arguments and of their success; calls and returns left out.
TEST_F(GoldenSession, EntryPointsNameTheirArguments) {
    ApplicationModel &application =
        insert({ecc("sm2", true, false), rsa("rsa", 1024, false, true)});
    application.files["7"].content = Bytes(20);
    const SPI_KEYPAIR_HANDLE key = pair("sm2", 2), rsaKey = pair("rsa", 1);
    unsigned char bytes[128] = {};
    char text[20];
    int n = 17;
    int tries = 5;
    trace().setLevel("5");
    mark();

    DeviceGetDeviceCount(m_set);
    DeviceGetDevice(m_set, -1);
    DeviceGetSerialNumber(m_device, text, 17, &n);
    DeviceGetSerialNumber(m_device, text, 17, nullptr);
    DeviceGetLabel(m_device, text, 17, &n);
    EXPECT_EQ(DeviceGetSerialNumber(nullptr, text, 17, &n), 0);
    EXPECT_EQ(DeviceGetLabel(nullptr, text, 17, &n), 0);
    DeviceLockDevice(m_device);
    DeviceUnlockDevice(nullptr);
    const SPI_KEYPAIR_HANDLE taken = DeviceGetKeypair(m_device, 0);
    DeviceGetKeypairCount(m_device);
    DeviceGetKeypairLabel(key, text, 20, &n);
    DeviceGetKeypairType(key);
    DeviceGetKeypairAlgorithm(key);
    DeviceGetKeypairBits(key);

    const SPI_PUBLICKEY_HANDLE publicKey = DeviceGetPublicKeyFromKeypair(key);
    DeviceExportPublicKey(publicKey, bytes, 68, &n);
    DeviceGetPublicKeyAlgorithm(publicKey);
    DeviceGetPublicKeyBits(publicKey);
    DeviceFreePublicKey(publicKey);
    EXPECT_EQ(DeviceExportPublicKey(nullptr, bytes, 68, &n), -1);
    EXPECT_EQ(DeviceGetPublicKeyFromKeypair(nullptr), nullptr);
    DeviceGetCertificateCount(key);
    DeviceGetCertificate(key, 0, nullptr, 9, &n);
    DeviceUpdateCertificate(key, bytes, 5);

    DeviceSign(key, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, bytes, 32, bytes, 80, &n);
    DevicePrivateKeyDecrypt(rsaKey, 16, nullptr, bytes, 102, bytes, 128, &n);
    DeviceVerifyPwd(m_device, 1, "user-pin", &tries);
    tries = 5;
    DeviceChangePwd(m_device, 1, "user-pin", "new", &tries);
    DeviceUnlockPwd(m_device, 1, "admin-pin", "newer", &tries);
    tries = 5;
    DeviceGetPwdRetryNum(m_device, 1, &tries);

    DeviceGenerateRandom(m_device, 3, bytes);
    const SPI_HASH_HANDLE hash = DeviceNewHash(m_device, ORVEL_PKI_ALGORITHM_SM3);
    DeviceHashUpdate(hash, bytes, 3);
    n = 32;
    DeviceHashFinal(hash, bytes, 32, &n);
    DeviceFreeHash(hash);
    const Bytes in(16, 0xAB);
    Bytes out(20);
    const SPI_CIPHER_HANDLE cipher =
        DeviceNewCipher(m_device, 1, ORVEL_PKI_ALGORITHM_SMS4_ECB, bytes, 16, nullptr);
    DeviceCipherUpdate(cipher, in.data(), 16, out.data(), 20, &n);
    DeviceFreeCipher(cipher);

    DeviceCreateData(m_device, 8, "\2\3", 1);
    n = 77;
    DeviceReadDataEx(m_device, 7, 0, bytes, 10, &n);
    DeviceWriteDataEx(m_device, 7, 0, bytes, 10);
    DeviceDeleteData(m_device, 7);
    SPI_KEYPAIR_HANDLE generated = nullptr;
    const TembraEccParam sm2 = {ORVEL_PKI_ECC_CURVE_SM2, 0};
    DeviceGenerateKeypair(m_device, 4, 256, &sm2, 2, "new", &generated);

    Lines lines = trace().texts();
    std::erase_if(
        lines, [](const std::string &line) { return line.find("call_stack_tracer") != line.npos; });
    const std::string number =
        "pretoutlen = " +
        std::to_string(static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(&n)));
    for (std::string &line : lines)
        if (line.ends_with(number))
            line.replace(line.size() - number.size(), number.npos, "pretoutlen = %d");
    DeviceFreeKeypair(generated);
    DeviceFreeKeypair(taken);
    EXPECT_EQ(lines, goldenTrace("entry_points"));
}

} // namespace
} // namespace tembra::test
