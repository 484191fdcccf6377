#include "operations.h"

#include "arguments.h"

namespace tembra::fuzz {
namespace {

const int CIPHERS[] = {ORVEL_PKI_ALGORITHM_SM1_ECB, ORVEL_PKI_ALGORITHM_SM1_CBC,
                       ORVEL_PKI_ALGORITHM_SMS4_ECB, ORVEL_PKI_ALGORITHM_SMS4_CBC,
                       ORVEL_PKI_ALGORITHM_SSF33_CBC};
const int ALGORITHMS[] = {ORVEL_PKI_ALGORITHM_RSA,
                          ORVEL_PKI_ALGORITHM_ECC,
                          ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC,
                          ORVEL_PKI_ALGORITHM_SM2_ENC,
                          ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN,
                          ORVEL_PKI_ALGORITHM_SM2_SIGN,
                          ORVEL_PKI_ALGORITHM_SM3,
                          ORVEL_PKI_ALGORITHM_SSF33_ECB,
                          0x30,
                          2};
const int USAGES[] = {1, 2, 3, 5, 7, 11, 0, 40, -1};
const TembraEccParam CURVES[] = {{7, 0}, {7, 0}, {7, 0}, {7, 1}, {6, 0}};

// Limited, to keep runs short.
void discover(Session &s) {
    if (s.discoveries++ < 8)
        s.keep(s.sets, DeviceGetAllDevices());
}

// The algorithm of the key pair, or any.
int algorithmOf(Session &s, SPI_KEYPAIR_HANDLE pair, int rsa, int ecc) {
    if (pair == nullptr || s.input.once(8))
        return s.input.pick(ALGORITHMS);
    return DeviceGetKeypairAlgorithm(pair) == ORVEL_PKI_ALGORITHM_RSA ? rsa : ecc;
}

const void *anyParam(Session &s) {
    static const int hashes[] = {ORVEL_PKI_ALGORITHM_SM3, 0};
    switch (s.input.byte() % 4) {
    case 0: return nullptr;
    case 1: return &s.input.pick(CURVES);
    default: return &hashes[0];
    }
}

void generate(Session &s) {
    SPI_DEVICE_HANDLE device = s.any(s.devices);
    const bool rsa = s.input.once(2);
    const int algorithm = s.input.once(8) ? s.input.pick(ALGORITHMS) : rsa ? 1 : 4;
    const int sizes[] = {rsa ? 1024 : 256, rsa ? 2048 : 256, 0, 512};
    const int bits = s.input.pick(sizes);
    const void *param = s.input.once(8) ? anyParam(s) : rsa ? nullptr : &s.input.pick(CURVES);
    const Text label(s.input, {"new", "c0", "n1", "n2", ""});
    SPI_KEYPAIR_HANDLE pair = nullptr;
    const int result =
        DeviceGenerateKeypair(device, algorithm, bits, param, s.input.once(8) ? 1 : 2, label,
                              s.input.once(16) ? nullptr : &pair);
    require(pair == nullptr || result == 1, "a generated pair without success");
    s.keep(s.pairs, pair);
}

void sign(Session &s) {
    SPI_KEYPAIR_HANDLE pair = s.any(s.pairs);
    const int algorithm =
        algorithmOf(s, pair, ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN, ORVEL_PKI_ALGORITHM_SM2_SIGN);
    const Data data(s.input);
    const Output out(s.input);
    out.check(DeviceSign(pair, algorithm, anyParam(s), data.data(), data.length(), out.data(),
                         out.capacity(), out.needed()));
}

void decrypt(Session &s) {
    SPI_KEYPAIR_HANDLE pair = s.any(s.pairs);
    const int algorithm =
        algorithmOf(s, pair, ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC, ORVEL_PKI_ALGORITHM_SM2_ENC);
    Bytes cipher = s.input.bytes(s.input.once(4) ? s.input.byte() : 97 + s.input.byte());
    if (!cipher.empty())
        cipher[0] = s.input.once(8) ? 2 : 4;
    const ExactBlock block(cipher);
    const Output out(s.input);
    out.check(DevicePrivateKeyDecrypt(pair, algorithm, anyParam(s),
                                      s.input.once(16) ? nullptr : block.data(), block.size(),
                                      out.data(), out.capacity(), out.needed()));
}

void newHashes(Session &s) {
    SPI_DEVICE_HANDLE device = s.any(s.devices);
    const int algorithm = s.input.once(8) ? 1 : ORVEL_PKI_ALGORITHM_SM3;
    for (int count = s.input.once(8) ? 66 : 1; count > 0; --count)
        s.keep(s.hashes, DeviceNewHash(device, algorithm));
}

void newCiphers(Session &s) {
    SPI_DEVICE_HANDLE device = s.any(s.devices);
    const ExactBlock key(s.input.bytes(16));
    const ExactBlock iv(s.input.bytes(16));
    const int algorithm = s.input.once(8) ? s.input.pick(ALGORITHMS) : s.input.pick(CIPHERS);
    const int encrypts = s.input.byte() % 2;
    for (int count = s.input.once(8) ? 66 : 1; count > 0; --count) {
        s.keep(s.ciphers,
               DeviceNewCipher(device, encrypts, algorithm, s.input.once(16) ? nullptr : key.data(),
                               s.input.once(16) ? 15 : 16, s.input.once(8) ? nullptr : iv.data()));
    }
}

void updateCipher(Session &s) {
    SPI_CIPHER_HANDLE cipher = s.any(s.ciphers);
    const ExactBlock plain(s.input.once(4)
                               ? s.input.bytes(s.input.byte())
                               : Bytes(16u * (1 + s.input.byte() % 100), s.input.byte()));
    const ExactBlock out(
        Bytes(s.input.once(4) ? s.input.byte() : static_cast<std::size_t>(plain.size())));
    const bool inPlace = s.input.once(4);
    const int size = s.input.once(16) ? -1 : plain.size();
    int length = 0;
    const int result = DeviceCipherUpdate(cipher, s.input.once(16) ? nullptr : plain.data(), size,
                                          s.input.once(8) ? nullptr
                                          : inPlace       ? plain.data()
                                                          : out.data(),
                                          inPlace ? plain.size() : out.size(),
                                          s.input.once(16) ? nullptr : &length);
    require(result >= -4 && result <= 1, "an undefined result");
}

void createData(Session &s) {
    SPI_DEVICE_HANDLE device = s.any(s.devices);
    Bytes mode = {s.input.byte()}; // its count, then as many rights as that can mean
    const Bytes rights = s.input.bytes(4);
    mode[0] = s.input.once(4) ? mode[0] : static_cast<unsigned char>(2 + mode[0] % 3);
    mode.insert(mode.end(), rights.begin(), rights.end());
    const ExactBlock block(mode);
    DeviceCreateData(device, s.input.byte() % 4 - 1,
                     s.input.once(16) ? nullptr : reinterpret_cast<const char *>(block.data()),
                     static_cast<signed char>(s.input.byte()));
}

int anyOffset(Session &s) {
    return s.input.once(8) ? static_cast<int>(s.input.number()) : s.input.byte() % 64;
}

// In the order of the table of entry points.
const Operation TABLE[] = {
    discover,
    [](Session &s) { DeviceGetDeviceCount(s.any(s.sets)); },
    [](Session &s) {
        SPI_DEVICESET_HANDLE set = s.any(s.sets);
        s.keep(s.devices, DeviceGetDevice(set, s.input.byte() % 6 - 1));
    },
    [](Session &s) { s.freeSet(s.take(s.sets)); },
    [](Session &s) { s.freeDevice(s.take(s.devices)); },
    [](Session &s) {
        const Output out(s.input);
        out.check(
            DeviceGetSerialNumber(s.any(s.devices), out.text(), out.capacity(), out.needed()));
    },
    [](Session &s) {
        const Output out(s.input);
        out.check(DeviceGetLabel(s.any(s.devices), out.text(), out.capacity(), out.needed()));
    },
    [](Session &s) {
        DeviceLockDevice(s.any(s.devices));
        DeviceUnlockDevice(s.any(s.devices));
    },
    [](Session &s) { DeviceGetKeypairCount(s.any(s.devices)); },
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        s.keep(s.pairs, DeviceGetKeypair(device, s.input.byte() % 8 - 1));
    },
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        const Text label(s.input, {"c0", "c1", "c2", "new"});
        SPI_KEYPAIR_HANDLE pair = nullptr;
        DeviceFindKeypair(device, s.input.byte() % 4, label, s.input.once(16) ? nullptr : &pair);
        s.keep(s.pairs, pair);
    },
    [](Session &s) { s.freePair(s.take(s.pairs)); },
    [](Session &s) {
        const Output out(s.input);
        out.check(DeviceGetKeypairLabel(s.any(s.pairs), out.text(), out.capacity(), out.needed()));
    },
    [](Session &s) {
        SPI_KEYPAIR_HANDLE pair = s.any(s.pairs);
        DeviceGetKeypairType(pair);
        DeviceGetKeypairAlgorithm(pair);
        DeviceGetKeypairBits(pair);
    },
    generate,
    [](Session &s) { s.deletePair(); },
    [](Session &s) { s.importPair(); },
    [](Session &s) { s.keep(s.publicKeys, DeviceGetPublicKeyFromKeypair(s.any(s.pairs))); },
    [](Session &s) {
        const Output out(s.input);
        out.check(
            DeviceExportPublicKey(s.any(s.publicKeys), out.data(), out.capacity(), out.needed()));
    },
    [](Session &s) {
        SPI_PUBLICKEY_HANDLE key = s.any(s.publicKeys);
        DeviceGetPublicKeyAlgorithm(key);
        DeviceGetPublicKeyBits(key);
    },
    [](Session &s) { DeviceFreePublicKey(s.take(s.publicKeys)); },
    [](Session &s) { DeviceGetCertificateCount(s.any(s.pairs)); },
    [](Session &s) {
        const Output out(s.input);
        SPI_KEYPAIR_HANDLE pair = s.any(s.pairs);
        out.check(DeviceGetCertificate(pair, s.input.byte() % 4 - 1, out.data(), out.capacity(),
                                       out.needed()));
    },
    [](Session &s) { s.updateCertificate(); },
    sign,
    decrypt,
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        const Text pin(s.input, {"user-pin", "admin-pin", "12345678123456781234567812345678"});
        int tries = 0;
        DeviceVerifyPwd(device, s.input.byte() % 5, pin, s.input.once(8) ? nullptr : &tries);
    },
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        const Text from(s.input, {"user-pin", "admin-pin"});
        const Text to(s.input, {"user-pin", "admin-pin"});
        int tries = 0;
        DeviceChangePwd(device, s.input.byte() % 4, from, to, s.input.once(8) ? nullptr : &tries);
    },
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        const Text admin(s.input, {"admin-pin", "user-pin"});
        const Text to(s.input, {"user-pin", "admin-pin"});
        int tries = 0;
        DeviceUnlockPwd(device, s.input.byte() % 3, admin, to, s.input.once(8) ? nullptr : &tries);
    },
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        int tries = 0;
        DeviceGetPwdRetryNum(device, s.input.byte() % 4, s.input.once(8) ? nullptr : &tries);
    },
    [](Session &s) {
        const ExactBlock random(Bytes(s.input.byte()));
        DeviceGenerateRandom(s.any(s.devices), random.size(), random.data());
    },
    newHashes,
    [](Session &s) {
        const Data data(s.input);
        DeviceHashUpdate(s.any(s.hashes), data.data(), data.length());
    },
    [](Session &s) {
        const Output out(s.input);
        out.check(DeviceHashFinal(s.any(s.hashes), out.data(), out.capacity(), out.needed()));
    },
    [](Session &s) { DeviceFreeHash(s.take(s.hashes)); },
    newCiphers,
    updateCipher,
    [](Session &s) { DeviceFreeCipher(s.take(s.ciphers)); },
    createData,
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        const Output out(s.input);
        const int offset = anyOffset(s);
        out.check(DeviceReadDataEx(device, s.input.byte() % 4 - 1, offset, out.data(),
                                   out.capacity(), out.needed()));
    },
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        const Data data(s.input);
        const int offset = anyOffset(s);
        DeviceWriteDataEx(device, s.input.byte() % 4 - 1, offset, data.data(), data.length());
    },
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        DeviceDeleteData(device, s.input.byte() % 4 - 1);
    },
    [](Session &s) {
        SPI_DEVICE_HANDLE device = s.any(s.devices);
        const int algorithm = s.input.once(2) ? s.input.pick(CIPHERS) : s.input.pick(ALGORITHMS);
        const int bits = s.input.once(2) ? 1024 : 512;
        const int usage = s.input.pick(USAGES);
        DeviceIsSupportedAlgorithm2(device, algorithm, bits, usage, anyParam(s));
    },
};

} // namespace

std::span<const Operation> operations() {
    return TABLE;
}

} // namespace tembra::fuzz
