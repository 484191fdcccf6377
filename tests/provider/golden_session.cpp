// The trace of whole sessions over the scripted token, line by line.
#include "scripted_test.h"
#include "typical_session.h"

namespace tembra::test {
namespace {

class GoldenSession : public ScriptedTest {};

TEST_F(GoldenSession, MatchesLineByLine) {
    ApplicationModel &application = addToken({ecc(sessionLabel, true, false)});
    application.pins[USER_TYPE] = sessionPin;
    script().memory.devices.front().info.AlgSymCap = SGD_SMS4_ECB | SGD_SMS4_CBC;
    ASSERT_EQ(DeviceEnd(), 1);
    trace().setLevel("5");
    mark();
    ASSERT_EQ(DeviceInit(), 1);
    EXPECT_EQ(runTypicalSession(), encodedSignature());
    Lines expected = goldenInit();
    const Lines rest = goldenSession();
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

    DeviceGetDeviceCount(set);
    DeviceGetDevice(set, -1);
    DeviceGetSerialNumber(device, text, 17, &n);
    DeviceGetSerialNumber(device, text, 17, nullptr);
    DeviceGetLabel(device, text, 17, &n);
    EXPECT_EQ(DeviceGetSerialNumber(nullptr, text, 17, &n), 0);
    EXPECT_EQ(DeviceGetLabel(nullptr, text, 17, &n), 0);
    DeviceLockDevice(device);
    DeviceUnlockDevice(nullptr);
    const SPI_KEYPAIR_HANDLE taken = DeviceGetKeypair(device, 0);
    DeviceGetKeypairCount(device);
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
    DeviceVerifyPwd(device, 1, "user-pin", &tries);
    tries = 5;
    DeviceChangePwd(device, 1, "user-pin", "new", &tries);
    DeviceUnlockPwd(device, 1, "admin-pin", "newer", &tries);
    tries = 5;
    DeviceGetPwdRetryNum(device, 1, &tries);

    DeviceGenerateRandom(device, 3, bytes);
    const SPI_HASH_HANDLE hash = DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3);
    DeviceHashUpdate(hash, bytes, 3);
    n = 32;
    DeviceHashFinal(hash, bytes, 32, &n);
    DeviceFreeHash(hash);
    const Bytes in(16, 0xAB);
    Bytes out(20);
    const SPI_CIPHER_HANDLE cipher =
        DeviceNewCipher(device, 1, ORVEL_PKI_ALGORITHM_SMS4_ECB, bytes, 16, nullptr);
    DeviceCipherUpdate(cipher, in.data(), 16, out.data(), 20, &n);
    DeviceFreeCipher(cipher);

    DeviceCreateData(device, 8, "\2\3", 1);
    n = 77;
    DeviceReadDataEx(device, 7, 0, bytes, 10, &n);
    DeviceWriteDataEx(device, 7, 0, bytes, 10);
    DeviceDeleteData(device, 7);
    SPI_KEYPAIR_HANDLE generated = nullptr;
    const TembraEccParam sm2 = {ORVEL_PKI_ECC_CURVE_SM2, 0};
    DeviceGenerateKeypair(device, 4, 256, &sm2, 2, "new", &generated);

    Lines lines = trace().texts();
    std::erase_if(
        lines, [](const std::string &line) { return line.find("call_stack_tracer") != line.npos; });
    DeviceFreeKeypair(generated);
    DeviceFreeKeypair(taken);
    EXPECT_EQ(lines, goldenLines(R"([INFO] [DeviceGetDeviceCount] hDeviceSet = %p
[INFO] [DeviceGetDevice] hDeviceSet = %p, index = -1
[ERROR] [DeviceGetDevice] index < 0 || index >= hDeviceSet->m_count
[INFO] [DeviceGetSerialNumber] hDevice = %p, sn = TEST-0123456789A, snlen = 17, pretsnlen = 17
[INFO] [DeviceGetSerialNumber] hDevice = %p, sn = TEST-0123456789A, snlen = 17, pretsnlen = 0
[INFO] [DeviceGetLabel] label : Test Token
[ERROR] [DeviceGetSerialNumber] rv = hDevice == 0
[ERROR] [DeviceGetLabel] hDevice == 0
[INFO] [DeviceLockDevice] DeviceLockDevice success
[INFO] [DeviceUnlockDevice] DeviceUnlockDevice success
[DEBUG] [DeviceGetKeypair] hKeypair=%p
[DEBUG] [DeviceGetKeypairCount] hDevice->m_keypairCount=2
[INFO] [DeviceGetKeypairLabel] SPI_KEYPAIR_HANDLE hKeypair = %p, char *label = sm2, int labellen = 20, int *pretlabellen = 4
[INFO] [DeviceGetKeypairType] hKeypair->m_keytype = 2
[INFO] [DeviceGetKeypairAlgorithm] hKeypair->m_algo=4
[INFO] [DeviceGetKeypairBits] hKeypair->m_keybits=256
[INFO] [DeviceGetPublicKeyFromKeypair] hPublicKey = %p
[VERBOSE] [DeviceExportPublicKey] keyblob[length:68]: 454343072122232425262728292A2B2C2D2E2F303132333435363738393A3B3C3D3E3F4085868788898A8B8C8D8E8F909192939495969798999A9B9C9D9E9FA0A1A2A3A4
[INFO] [DeviceGetPublicKeyAlgorithm] hPublicKey->m_algo = 4
[INFO] [DeviceGetPublicKeyBits] SPI_PUBLICKEY_HANDLE hPublicKey->m_keybits = 256
[DEBUG] [DeviceFreePublicKey] hPublicKey = NULL, line: 0
[ERROR] [DeviceExportPublicKey] hPublicKey=0
[ERROR] [DeviceGetPublicKeyFromKeypair] hKeypair == 0
[INFO] [DeviceGetCertificateCount] hKeypair=%p, hKeypair->m_keytype = 2
[INFO] [DeviceGetCertificate] SPI_KEYPAIR_HANDLE hKeypair = %p, int index = 0, unsigned char *certblob = (nil), int certbloblen = 9, int *pretcertbloblen = 68
[ERROR] [DeviceGetCertificate] len <= 0
[INFO] [DeviceUpdateCertificate] SPI_KEYPAIR_HANDLE hKeypair = %p, const unsigned char *certblob = %p, int certbloblen = 5
[INFO] [DeviceSign] SPI_KEYPAIR_HANDLE hKeypair = %p, int algo = 4096, const void *param = (nil), const unsigned char *tbs = %p, int tbslen = 32, unsigned char *sign = %p, int signlen = 80, int *pretsignlen = 68
[DEBUG] [DeviceSign] DeviceSign success
[INFO] [DevicePrivateKeyDecrypt] SPI_KEYPAIR_HANDLE hKeypair = %p, int algo = 16, const void *param = (nil), const unsigned char *cipher = %p, int cipherlen = 102, unsigned char *clear = %p, int clearlen = 128, int *pretclearlen = 67
[INFO] [DeviceVerifyPwd] hDevice = %p, type = 1, pwd = user-pin, *pretrynum = 5
[INFO] [DeviceChangePwd] hDevice = %p, int type = 1, const char *oldpwd = user-pin, const char *newpwd = new, int *pretrynum = 5
[INFO] [DeviceUnlockPwd] hDevice = %p, int type = 1, const char *sopwd = admin-pin, const char *newpwd = newer, int *pretrynum = %p
[INFO] [DeviceGetPwdRetryNum] hDevice = %p, int type = 1， int *pretrynum = 5
[INFO] [DeviceGenerateRandom] hDevice = %p, int len = 3, unsigned char *rand = %p
[INFO] [DeviceNewHash] hDevice = %p, int algo = 28672
[INFO] [DeviceHashUpdate] SPI_HASH_HANDLE hHash = %p, const unsigned char *data = %p, int datalen = 3
[INFO] [DeviceHashFinal] SPI_HASH_HANDLE hHash = %p, unsigned char *hashvalue = %p, int hashvaluelen = 32, int *prethashvaluelen = 32
[INFO] [DeviceFreeHash] SPI_HASH_HANDLE hHash = %p
[INFO] [DeviceFreeDevice] hDevice = %p
[INFO] [DeviceFreeDevice] hDevice->m_refCount=7, hDevice->m_keypairCount=2, hDevice->m_hashCount=0, hDevice->m_cipherCount=0
[INFO] [DeviceNewCipher] hDevice = %p, int enc = 1, int algo = 75497472, const unsigned char *key = %p, int keylen = 16, const void *param = (nil)
[INFO] [DeviceCipherUpdate] SPI_CIPHER_HANDLE hCipher = %p, const unsigned char *in = %p, int inlen = 16, unsigned char *out = %p, int outlen = 20, int *pretoutlen = %p
[VERBOSE] [DeviceCipherUpdate] in[length:16]: ABABABABABABABABABABABABABABABAB
[VERBOSE] [cipherUpdate] out[length:16]: 00000000000000000000000000000000
[INFO] [DeviceFreeCipher] SPI_CIPHER_HANDLE hCipher = %p
[INFO] [DeviceFreeDevice] hDevice = %p
[INFO] [DeviceFreeDevice] hDevice->m_refCount=7, hDevice->m_keypairCount=2, hDevice->m_hashCount=0, hDevice->m_cipherCount=0
[INFO] [DeviceCreateData] hDevice = %p, int dataId = 8, const char * mode = %p, int length = 1
[INFO] [DeviceReadDataEx] hDevice = %p, int dataId = 7, int offset = 0, unsigned char *data = %p, int datalen = 10, int*  pretdatalen = 77
[INFO] [DeviceWriteDataEx] hDevice = %p, int dataId = 7, int offset = 0, const unsigned char *data = %p, int datalen = 10
[INFO] [DeviceDeleteData] hDevice = %p, int dataId = 7
[INFO] [DeviceGenerateKeypair] hDevice = %p, int algo = 4, int keybits = 256, const void *param = %p, int type = 2, const char *label = %p, SPI_KEYPAIR_HANDLE *phKeypair = %p
[DEBUG] [createContainer] SKF_CreateContainer hDevice->m_hApp=%p, label=new, hCon=%p
)"));
}

} // namespace
} // namespace tembra::test
