// One protocol for every entry point that hands out bytes or text: a null buffer asks for the
// length, a short one is refused and untouched, an exact and a roomy one are filled. The trace, at
// its fullest, must not look into what is null.
#include "scripted_test.h"

namespace tembra::test {
namespace {

class BufferProtocol : public ScriptedTest {
protected:
    struct Entry {
        const char *name;
        std::function<int(unsigned char *, int, int *)> call;
        Bytes expected;
        int queried; // the length that a null buffer gets
        bool lengthMayBeNull;
    };

    static Bytes text(const std::string &characters) {
        Bytes bytes = bytesOf(characters);
        bytes.push_back(0);
        return bytes;
    }

    void expectProtocol(const Entry &entry) {
        const int size = static_cast<int>(entry.expected.size());
        int length = -99;
        EXPECT_EQ(entry.call(nullptr, 0, &length), 1) << "query";
        EXPECT_EQ(length, entry.queried);
        for (const int capacity : {size - 1, 0, size, size + 40}) {
            Bytes buffer(static_cast<std::size_t>(size) + 40, 0xEE);
            length = -99;
            if (capacity == 0 && std::string(entry.name) == "DeviceSign")
                continue; // refuses an empty buffer as an argument
            EXPECT_EQ(entry.call(buffer.data(), capacity, &length), capacity < size ? -4 : 1)
                << capacity;
            EXPECT_EQ(length, size);
            Bytes expected = capacity < size ? Bytes() : entry.expected;
            expected.resize(buffer.size(), 0xEE);
            EXPECT_EQ(buffer, expected) << capacity;
        }
        if (entry.lengthMayBeNull) {
            Bytes buffer(entry.expected.size());
            EXPECT_EQ(entry.call(nullptr, 0, nullptr), 1);
            EXPECT_EQ(entry.call(buffer.data(), size - 1, nullptr), -4);
            EXPECT_EQ(entry.call(buffer.data(), size, nullptr), 1);
            EXPECT_EQ(buffer, entry.expected);
        }
    }
};

TEST_F(BufferProtocol, HoldsForEveryEntryPoint) {
    ContainerModel model = ecc("sm2", true, true);
    model.signCertificate = {9, 8, 7, 6};
    insert({model});
    const SPI_KEYPAIR_HANDLE key = pair("sm2", 2);
    const SPI_PUBLICKEY_HANDLE publicKey = DeviceGetPublicKeyFromKeypair(key);
    const SPI_HASH_HANDLE hash = DeviceNewHash(m_device, ORVEL_PKI_ALGORITHM_SM3);
    const Bytes zeros(16);
    const SPI_CIPHER_HANDLE cipher =
        DeviceNewCipher(m_device, 1, ORVEL_PKI_ALGORITHM_SMS4_ECB, zeros.data(), 16, nullptr);
    Bytes sm2Cipher(100, 0x5A);
    sm2Cipher[0] = 4;
    const int sm3 = ORVEL_PKI_ALGORITHM_SM3;
    const auto chars = [](unsigned char *bytes) { return reinterpret_cast<char *>(bytes); };
    Bytes counted(32);
    for (std::size_t i = 0; i < 32; ++i)
        counted[i] = static_cast<unsigned char>(i);

#define CALL(name, ...) #name, [&](auto *out, int size, int *length) { return name(__VA_ARGS__); }
    const Entry entries[] = {
        {CALL(DeviceGetSerialNumber, m_device, chars(out), size, length), text("TEST-0123456789A"),
         17, true},
        {CALL(DeviceGetLabel, m_device, chars(out), size, length), text("Test Token"), 11, true},
        {CALL(DeviceGetKeypairLabel, key, chars(out), size, length), text("sm2"), 4, true},
        {CALL(DeviceExportPublicKey, publicKey, out, size, length), encodedEccKey(true), 68, true},
        {CALL(DeviceGetCertificate, key, 0, out, size, length), model.signCertificate, 4, true},
        {CALL(DeviceSign, key, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, zeros.data(), 16, out, size,
              length),
         encodedSignature(), 80, false},
        {CALL(DevicePrivateKeyDecrypt, key, ORVEL_PKI_ALGORITHM_SM2_ENC, &sm3, sm2Cipher.data(),
              100, out, size, length),
         Bytes(3), 100, false},
        {CALL(DeviceHashFinal, hash, out, size, length), counted, 32, false},
        {CALL(DeviceCipherUpdate, cipher, zeros.data(), 16, out, size, length), Bytes(16), 16,
         false},
    };
#undef CALL
    trace().setLevel("5");
    for (const Entry &entry : entries) {
        SCOPED_TRACE(entry.name);
        expectProtocol(entry);
    }
    DeviceFreeCipher(cipher);
    DeviceFreeHash(hash);
    DeviceFreePublicKey(publicKey);
}

} // namespace
} // namespace tembra::test
