// A null pointer for every pointer argument of every entry point; for the buffers that are filled,
// see buffer_protocol.cpp, for key pair blobs, import_refusals.cpp.
#include "scripted_test.h"

namespace tembra::test {
namespace {

class NullArguments : public ScriptedTest {};

template <typename Handle>
int taken(Handle handle) {
    return handle != nullptr;
}

TEST_F(NullArguments, AreAnsweredAtEveryLevel) {
    insert({ecc("sm2", true, true), rsa("rsa", 1024, true, false)});
    script().memory.devices.front().applications.front().files["1"].content = Bytes(10);
    const SPI_KEYPAIR_HANDLE key = pair("sm2", 2);
    const SPI_HASH_HANDLE hash = DeviceNewHash(m_device, ORVEL_PKI_ALGORITHM_SM3);
    Bytes bytes(128);
    unsigned char *b = bytes.data();
    const SPI_CIPHER_HANDLE cipher =
        DeviceNewCipher(m_device, 1, ORVEL_PKI_ALGORITHM_SMS4_ECB, b, 16, nullptr);
    char text[64] = {};
    int n = 0;
    const int sm3 = ORVEL_PKI_ALGORITHM_SM3;
    const TembraEccParam ecc = {7, 0};
    SPI_KEYPAIR_HANDLE out = nullptr;
    const SPI_DEVICE_HANDLE d = m_device;
    Bytes keypair = bytesOf("_KEYPAIR????????????");

    struct Case {
        const char *what;
        int expected;
        std::function<int()> call;
    };
#define CASE(expected, call)                                                                       \
    {                                                                                              \
#call, expected, [&]() -> int { return call; }                                             \
    }
    const Case cases[] = {
        CASE(-1, DeviceGetDeviceCount(nullptr)),
        CASE(0, taken(DeviceGetDevice(nullptr, 0))),
        CASE(1, DeviceFreeDevices(nullptr)),
        CASE(1, DeviceFreeDevice(nullptr)),
        CASE(0, DeviceGetSerialNumber(nullptr, text, 64, &n)),
        CASE(0, DeviceGetLabel(nullptr, text, 64, &n)),
        CASE(1, DeviceLockDevice(nullptr)),
        CASE(1, DeviceUnlockDevice(nullptr)),
        CASE(-1, DeviceGetKeypairCount(nullptr)),
        CASE(0, taken(DeviceGetKeypair(nullptr, 0))),
        CASE(-2, DeviceFindKeypair(nullptr, 2, "sm2", &out)),
        CASE(0, DeviceFindKeypair(d, 2, nullptr, &out)),
        CASE(0, DeviceFindKeypair(d, 2, "sm2", nullptr)),
        CASE(1, DeviceFreeKeypair(nullptr)),
        CASE(-2, DeviceGetKeypairLabel(nullptr, text, 64, &n)),
        CASE(-1, DeviceGetKeypairType(nullptr)),
        CASE(-1, DeviceGetKeypairAlgorithm(nullptr)),
        CASE(-1, DeviceGetKeypairBits(nullptr)),
        CASE(-2, DeviceGenerateKeypair(nullptr, 4, 256, &ecc, 2, "x", &out)),
        CASE(-1, DeviceGenerateKeypair(d, 4, 256, &ecc, 2, nullptr, &out)),
        CASE(-1, DeviceGenerateKeypair(d, 4, 256, &ecc, 2, "x", nullptr)),
        CASE(-1, DeviceGenerateKeypair(d, 4, 256, nullptr, 2, "x", &out)),
        CASE(-2, DeviceDeleteKeypair(nullptr)),
        CASE(-1, DeviceImportKeypair(d, keypair.data(), 20, 1, "sm2", nullptr)),
        CASE(0, taken(DeviceGetPublicKeyFromKeypair(nullptr))),
        CASE(-1, DeviceExportPublicKey(nullptr, b, 128, &n)),
        CASE(-1, DeviceGetPublicKeyAlgorithm(nullptr)),
        CASE(-1, DeviceGetPublicKeyBits(nullptr)),
        CASE(1, DeviceFreePublicKey(nullptr)),
        CASE(-1, DeviceGetCertificateCount(nullptr)),
        CASE(-2, DeviceGetCertificate(nullptr, 0, b, 128, &n)),
        CASE(-2, DeviceUpdateCertificate(nullptr, b, 3)),
        CASE(0, DeviceUpdateCertificate(key, nullptr, 3)),
        CASE(-2, DeviceSign(nullptr, 0x1000, nullptr, b, 32, b, 128, &n)),
        CASE(0, DeviceSign(key, 0x1000, nullptr, nullptr, 32, b, 128, &n)),
        CASE(-1, DeviceSign(key, 0x1000, nullptr, b, 32, b, 128, nullptr)),
        CASE(-2, DevicePrivateKeyDecrypt(nullptr, 0x40, &sm3, b, 100, b, 128, &n)),
        CASE(0, DevicePrivateKeyDecrypt(key, 0x40, nullptr, b, 100, b, 128, &n)),
        CASE(-1, DevicePrivateKeyDecrypt(key, 0x40, &sm3, nullptr, 100, b, 128, &n)),
        CASE(-1, DevicePrivateKeyDecrypt(key, 0x40, &sm3, b, 100, b, 128, nullptr)),
        CASE(-2, DeviceVerifyPwd(nullptr, 1, "x", &n)),
        CASE(-2, DeviceVerifyPwd(nullptr, 3, "x", &n)),
        CASE(-1, DeviceVerifyPwd(d, 1, nullptr, &n)),
        CASE(-1, DeviceVerifyPwd(d, 3, nullptr, &n)),
        CASE(1, DeviceVerifyPwd(d, 1, "user-pin", nullptr)),
        CASE(-2, DeviceChangePwd(nullptr, 1, "x", "y", &n)),
        CASE(-1, DeviceChangePwd(d, 1, nullptr, "y", &n)),
        CASE(-1, DeviceChangePwd(d, 1, "x", nullptr, &n)),
        CASE(1, DeviceChangePwd(d, 1, "user-pin", "user-pin", nullptr)),
        CASE(-2, DeviceUnlockPwd(nullptr, 1, "x", "y", &n)),
        CASE(-1, DeviceUnlockPwd(d, 1, nullptr, "y", &n)),
        CASE(-1, DeviceUnlockPwd(d, 1, "x", nullptr, &n)),
        CASE(1, DeviceUnlockPwd(d, 1, "admin-pin", "user-pin", nullptr)),
        CASE(-2, DeviceGetPwdRetryNum(nullptr, 1, &n)),
        CASE(1, DeviceGetPwdRetryNum(d, 1, nullptr)),
        CASE(0, DeviceGenerateRandom(nullptr, 8, b)),
        CASE(0, DeviceGenerateRandom(d, 8, nullptr)),
        CASE(0, taken(DeviceNewHash(nullptr, sm3))),
        CASE(-2, DeviceHashUpdate(nullptr, b, 8)),
        CASE(-1, DeviceHashUpdate(hash, nullptr, 8)),
        CASE(-2, DeviceHashFinal(nullptr, b, 32, &n)),
        CASE(-1, DeviceHashFinal(hash, b, 32, nullptr)),
        CASE(1, DeviceFreeHash(nullptr)),
        CASE(0, taken(DeviceNewCipher(nullptr, 1, 0x04800000, b, 16, nullptr))),
        CASE(0, taken(DeviceNewCipher(d, 1, 0x04800000, nullptr, 16, nullptr))),
        CASE(0, taken(DeviceNewCipher(d, 1, 0x04C00000, b, 16, nullptr))),
        CASE(-2, DeviceCipherUpdate(nullptr, b, 16, b, 16, &n)),
        CASE(-1, DeviceCipherUpdate(cipher, nullptr, 16, b, 16, &n)),
        CASE(-1, DeviceCipherUpdate(cipher, b, 16, b, 16, nullptr)),
        CASE(1, DeviceFreeCipher(nullptr)),
        CASE(-2, DeviceCreateData(nullptr, 2, "\2\3", 1)),
        CASE(-1, DeviceCreateData(d, 2, nullptr, 1)),
        CASE(-2, DeviceReadDataEx(nullptr, 1, 0, b, 8, &n)),
        CASE(1, DeviceReadDataEx(d, 1, 0, nullptr, 8, &n)),
        CASE(-1, DeviceReadDataEx(d, 1, 0, b, 8, nullptr)),
        CASE(-2, DeviceWriteDataEx(nullptr, 1, 0, b, 8)),
        CASE(-1, DeviceWriteDataEx(d, 1, 0, nullptr, 8)),
        CASE(-2, DeviceDeleteData(nullptr, 1)),
        CASE(0, DeviceIsSupportedAlgorithm2(nullptr, 1, 2048, 7, nullptr)),
        CASE(0, DeviceIsSupportedAlgorithm2(d, 4, 256, 7, nullptr)),
        CASE(0, DeviceIsSupportedAlgorithm2(d, 0x40, 0, 2, nullptr)),
    };
#undef CASE
    for (const char *level : {"5", "4", "3", "2", "1", "0"}) {
        trace().setLevel(level);
        for (const Case &at : cases)
            EXPECT_EQ(at.call(), at.expected) << at.what << " at level " << level;
    }
    EXPECT_EQ(out, nullptr);
    DeviceFreeCipher(cipher);
    DeviceFreeHash(hash);
}

} // namespace
} // namespace tembra::test
