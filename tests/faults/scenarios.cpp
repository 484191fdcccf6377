#include "scenarios.h"

#include "../support/key_pair_blobs.h"

#include <algorithm>

namespace tembra::test {
namespace {

constexpr int SIGN = ORVEL_PKI_KEYPAIRTYPE_SIGNATURE;
constexpr int ENCRYPT = ORVEL_PKI_KEYPAIRTYPE_ENCRYPT;
constexpr int SM3 = ORVEL_PKI_ALGORITHM_SM3;
constexpr TembraEccParam SM2 = {ORVEL_PKI_ECC_CURVE_SM2, 0};
const Bytes CERTIFICATE(40, 0x30);

int sizeOf(const Bytes &bytes) {
    return static_cast<int>(bytes.size());
}

// Pseudo-random, so that any eight bytes identify a secret.
Bytes secret(std::size_t size, std::uint32_t seed) {
    Bytes bytes(size);
    for (unsigned char &byte : bytes) {
        seed = seed * 1664525u + 1013904223u;
        byte = static_cast<unsigned char>(seed >> 24);
    }
    return bytes;
}
const Bytes SCALAR = secret(32, 1), DER = secret(608, 2), SYMMETRIC_KEY = secret(16, 3),
            MESSAGE = secret(30, 4), PLAINTEXT = secret(2080, 5), CIPHER_KEY = secret(16, 6);
const char *const AUTHENTICATION_KEY = "31415926535897932384626433832795";

// The bytes of the text, whose digits are all decimal.
Bytes authenticationKey() {
    Bytes key;
    for (const char *digit = AUTHENTICATION_KEY; *digit != 0; digit += 2)
        key.push_back(static_cast<unsigned char>((digit[0] - '0') << 4 | (digit[1] - '0')));
    return key;
}

void insertToken() {
    DeviceModel &token = script().memory.addDevice("key");
    token.info.AlgSymCap |= SGD_SSF33_ECB;
    ApplicationModel &application = token.applications.emplace_back();
    application.name = "app";
    application.containers = {ecc("c", true, true), rsa("r", 1024, true, true), {"empty"}};
    for (ContainerModel &container : application.containers)
        container.signCertificate = container.encryptCertificate = CERTIFICATE;
}

void insertTokens() {
    insertToken();
    script().memory.devices.front().applications.emplace_back().name = "second";
    script().memory.addDevice("blank");
}

void insertForPlainKeys() {
    insertToken();
    allowPlainRsa(1024);
    script().OrvelPKICryptoGenerateRandom.run([](void *, int length, unsigned char *out) {
        std::copy_n(SYMMETRIC_KEY.begin(), length, out);
        return 1;
    });
}

void insertFailingCipher() {
    insertForPlainKeys();
    script().SKF_Encrypt.run([](HANDLE, BYTE *in, ULONG length, BYTE *out, ULONG *) {
        std::copy_n(in, length, out);
        return SAR_FAIL;
    });
}

void start(Session &s) {
    s.did("DeviceEnd", DeviceEnd());
    s.did("DeviceInit", DeviceInit());
}

void look(Session &s) {
    s.discover();
    s.did("DeviceGetDeviceCount", DeviceGetDeviceCount(s.set) == 3);
    s.did("DeviceLockDevice", DeviceLockDevice(s.device));
    s.did("DeviceUnlockDevice", DeviceUnlockDevice(s.device));
    s.got("DeviceGetSerialNumber", [&](unsigned char *out, int size, int *length) {
        return DeviceGetSerialNumber(s.device, reinterpret_cast<char *>(out), size, length);
    });
    s.got("DeviceGetLabel", [&](unsigned char *out, int size, int *length) {
        return DeviceGetLabel(s.device, reinterpret_cast<char *>(out), size, length);
    });
    s.did("DeviceIsSupportedAlgorithm2",
          DeviceIsSupportedAlgorithm2(s.device, ORVEL_PKI_ALGORITHM_RSA, 2048,
                                      ORVEL_PKI_USAGE_GENKEYPAIR, nullptr));
}

void readKeys(Session &s) {
    s.discover();
    s.did("DeviceGetKeypairCount", DeviceGetKeypairCount(s.device) == 4);
    for (int i = 0; i < 4; ++i) {
        const bool isSm2 = i < 2;
        SPI_KEYPAIR_HANDLE pair = DeviceGetKeypair(s.device, i);
        s.keep("DeviceGetKeypair", pair, pair != nullptr);
        s.did("DeviceGetKeypairType", DeviceGetKeypairType(pair) == (i % 2 == 0 ? SIGN : ENCRYPT));
        s.did("DeviceGetKeypairAlgorithm", DeviceGetKeypairAlgorithm(pair) == (isSm2 ? 4 : 1));
        s.did("DeviceGetKeypairBits", DeviceGetKeypairBits(pair) == (isSm2 ? 256 : 1024));
        s.got("DeviceGetKeypairLabel", [&](unsigned char *out, int size, int *length) {
            return DeviceGetKeypairLabel(pair, reinterpret_cast<char *>(out), size, length);
        });
        s.did("DeviceGetCertificateCount", DeviceGetCertificateCount(pair));
        const Bytes read =
            s.got("DeviceGetCertificate", [&](unsigned char *out, int size, int *length) {
                return DeviceGetCertificate(pair, 0, out, size, length);
            });
        s.did("DeviceGetCertificate", read == CERTIFICATE);

        SPI_PUBLICKEY_HANDLE key = DeviceGetPublicKeyFromKeypair(pair);
        s.did("DeviceGetPublicKeyFromKeypair", key != nullptr);
        s.did("DeviceGetPublicKeyAlgorithm", DeviceGetPublicKeyAlgorithm(key) == (isSm2 ? 4 : 1));
        s.did("DeviceGetPublicKeyBits", DeviceGetPublicKeyBits(key) == (isSm2 ? 256 : 1024));
        const Bytes encoded =
            s.got("DeviceExportPublicKey", [&](unsigned char *out, int size, int *length) {
                return DeviceExportPublicKey(key, out, size, length);
            });
        s.did("DeviceFreePublicKey", DeviceFreePublicKey(key));
        s.did("DeviceExportPublicKey",
              encoded == (isSm2 ? encodedEccKey(i == 0) : encodedRsaKey(i == 2, 1024)));
    }
}

void signAndDecrypt(Session &s) {
    s.discover();
    const Bytes data(32, 0x17);
    Bytes cipher(65 + MESSAGE.size() + 32, 4);
    for (std::size_t i = 0; i < MESSAGE.size(); ++i) // as the scripted token masks it
        cipher[65 + i] = MESSAGE[i] ^ 0x5A;
    for (const bool isSm2 : {true, false}) {
        const char *label = isSm2 ? "c" : "r";
        SPI_KEYPAIR_HANDLE pair = s.find(label, SIGN);
        s.got("DeviceSign", [&](unsigned char *out, int size, int *length) {
            return DeviceSign(pair, isSm2 ? 0x1000 : 0x100, nullptr, data.data(), 32, out, size,
                              length);
        });
        pair = s.find(label, ENCRYPT);
        const Bytes clear =
            s.got("DevicePrivateKeyDecrypt", [&](unsigned char *out, int size, int *length) {
                return DevicePrivateKeyDecrypt(pair, isSm2 ? 0x40 : 0x10, &SM3, cipher.data(),
                                               sizeOf(cipher), out, size, length);
            });
        s.did("DevicePrivateKeyDecrypt", isSm2 ? clear == MESSAGE : clear.size() == 20);
    }
}

void generate(Session &s) {
    s.discover();
    for (const auto &[label, isSm2] : {std::pair("first", true), {"second", false}, {"c3", true}}) {
        SPI_KEYPAIR_HANDLE pair = nullptr;
        const int result = DeviceGenerateKeypair(s.device, isSm2 ? 4 : 1, isSm2 ? 256 : 1024,
                                                 isSm2 ? &SM2 : nullptr, SIGN, label, &pair);
        s.keep("DeviceGenerateKeypair", pair, result);
    }
    s.did("DeviceGetKeypairCount", DeviceGetKeypairCount(s.device) == 7);
}

void deleteKeys(Session &s) {
    s.discover();
    s.find("r", ENCRYPT);
    s.deletePair(s.find("r", SIGN));
    s.did("DeviceGetKeypairCount", DeviceGetKeypairCount(s.device) == 2);
}

void updateCertificates(Session &s) {
    s.discover();
    const Bytes longer(60, 0x31);
    for (const int type : {SIGN, ENCRYPT}) {
        SPI_KEYPAIR_HANDLE pair = s.find("c", type);
        s.did("DeviceUpdateCertificate", DeviceUpdateCertificate(pair, longer.data(), 60));
        const Bytes read =
            s.got("DeviceGetCertificate", [&](unsigned char *out, int size, int *length) {
                return DeviceGetCertificate(pair, 0, out, size, length);
            });
        const ContainerModel &kept =
            script().memory.devices.front().applications.front().containers.front();
        s.did("DeviceGetCertificate", read == longer);
        s.did("DeviceUpdateCertificate",
              (type == SIGN ? kept.signCertificate : kept.encryptCertificate) == longer);
    }
}

void importPair(Session &s, const char *label, const Bytes &blob) {
    SPI_KEYPAIR_HANDLE pair = nullptr;
    const int result =
        DeviceImportKeypair(s.device, blob.data(), sizeOf(blob), ENCRYPT, label, &pair);
    s.keep("DeviceImportKeypair", pair, result);
}

void importEnveloped(Session &s) {
    s.discover();
    importPair(s, "c", Sm2Envelope().blob());
    importPair(s, "r", RsaEnvelope().blob());
}

void importPlain(Session &s) {
    s.discover();
    importPair(s, "c", plainSm2(SCALAR));
    importPair(s, "r", plainRsa(1024, DER));
}

void failToEncipherKeys(Session &s) {
    s.discover();
    for (const auto &[label, blob] :
         {std::pair("c", plainSm2(SCALAR)), {"r", plainRsa(1024, DER)}}) {
        SPI_KEYPAIR_HANDLE pair = nullptr;
        const int result =
            DeviceImportKeypair(s.device, blob.data(), sizeOf(blob), ENCRYPT, label, &pair);
        s.did("DeviceImportKeypair", result == 0);
    }
}

void usePins(Session &s) {
    s.discover();
    int tries = 0;
    s.did("DeviceVerifyPwd", DeviceVerifyPwd(s.device, TEMBRA_PWD_USER, "user-pin", &tries));
    s.did("DeviceVerifyPwd", DeviceVerifyPwd(s.device, TEMBRA_PWD_ADMIN, "admin-pin", nullptr));
    s.did("DeviceChangePwd", DeviceChangePwd(s.device, 1, "user-pin", "second", &tries));
    s.did("DeviceUnlockPwd", DeviceUnlockPwd(s.device, 1, "admin-pin", "third", &tries));
    s.did("DeviceGetPwdRetryNum", DeviceGetPwdRetryNum(s.device, 1, &tries));
    s.did("DeviceGetPwdRetryNum", tries == 10);
    s.did("DeviceVerifyPwd",
          DeviceVerifyPwd(s.device, TEMBRA_PWD_DEVICE_AUTH, AUTHENTICATION_KEY, &tries));
}

void hashAndEncipher(Session &s) {
    s.discover();
    Bytes data(2080);
    int length = 0;
    s.did("DeviceGenerateRandom", DeviceGenerateRandom(s.device, 2080, data.data()));
    s.did("DeviceGenerateRandom", data.back() == static_cast<unsigned char>(2080)); // in one call
    SPI_HASH_HANDLE hash = DeviceNewHash(s.device, SM3);
    s.keepHash(hash);
    s.did("DeviceHashUpdate", DeviceHashUpdate(hash, data.data(), 2080));
    s.got("DeviceHashFinal", [&](unsigned char *value, int size, int *needed) {
        return DeviceHashFinal(hash, value, size, needed);
    });
    data = PLAINTEXT;
    for (const int enc : {1, 0}) {
        SPI_CIPHER_HANDLE cipher = DeviceNewCipher(s.device, enc, ORVEL_PKI_ALGORITHM_SMS4_CBC,
                                                   CIPHER_KEY.data(), 16, CERTIFICATE.data());
        s.keepCipher(cipher);
        Bytes out(2080);
        s.did("DeviceCipherUpdate",
              DeviceCipherUpdate(cipher, data.data(), 2080, out.data(), 2080, &length));
        data = out;
    }
    s.did("DeviceCipherUpdate", data == PLAINTEXT);
}

void storeData(Session &s) {
    s.discover();
    const Bytes data(10, 0x44);
    Bytes read(10);
    int length = 0;
    s.did("DeviceCreateData", DeviceCreateData(s.device, 7, "\3\3", 30));
    s.did("DeviceWriteDataEx", DeviceWriteDataEx(s.device, 7, 20, data.data(), 10));
    s.did("DeviceReadDataEx", DeviceReadDataEx(s.device, 7, 20, read.data(), 10, &length));
    s.did("DeviceReadDataEx", read == data);
    s.did("DeviceDeleteData", DeviceDeleteData(s.device, 7));
}

} // namespace

const std::vector<Scenario> &scenarios() {
    static const std::vector<Scenario> all = {
        {"start", nullptr, insertToken, start},
        {"look", "4", insertTokens, look},
        {"read keys", nullptr, insertToken, readKeys},
        {"sign and decrypt", nullptr, insertToken, signAndDecrypt},
        {"generate", "4", insertToken, generate},
        {"delete", nullptr, insertToken, deleteKeys},
        {"update certificates", nullptr, insertToken, updateCertificates},
        {"import enveloped", "5", insertToken, importEnveloped},
        {"import plain", nullptr, insertForPlainKeys, importPlain},
        {"PINs", nullptr, insertToken, usePins},
        {"hash and encipher", "5", insertToken, hashAndEncipher},
        {"data objects", nullptr, insertToken, storeData},
    };
    return all;
}

const Scenario FAILED_ENCRYPTION = {"failed encryption", nullptr, insertFailingCipher,
                                    failToEncipherKeys};

const std::vector<Secret> &secrets() {
    static const std::vector<Secret> all = {
        {"SCALAR", SCALAR, "SKF_CloseHandle"},
        {"DER", DER, "SKF_CloseHandle"},
        {"SYMMETRIC_KEY", SYMMETRIC_KEY, ""},
        {"MESSAGE", MESSAGE, ""},
        {"PLAINTEXT", PLAINTEXT, nullptr},
        {"CIPHER_KEY", CIPHER_KEY, nullptr},
        {"AUTHENTICATION_KEY", authenticationKey(), ""},
    };
    return all;
}

} // namespace tembra::test
