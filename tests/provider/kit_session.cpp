// Whole sessions over the development kit: real cryptography, real files, also as DLLs.
#include "kit_test.h"
#include "typical_session.h"

#include <algorithm>

namespace tembra::test {
namespace {

Bytes hex(const std::string &digits) {
    Bytes bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

class KitSession : public KitTest {
protected:
    Bytes ciphered(int enc, int algo, const Bytes &key, const Bytes &iv, const Bytes &in,
                   std::size_t step) {
        SPI_CIPHER_HANDLE cipher = DeviceNewCipher(device, enc, algo, key.data(), 16, iv.data());
        Bytes out(in.size());
        for (std::size_t at = 0; at < in.size(); at += step) {
            const int size = static_cast<int>(std::min(step, in.size() - at));
            int length = 0;
            EXPECT_EQ(DeviceCipherUpdate(cipher, &in[at], size, &out[at], size, &length), 1);
        }
        DeviceFreeCipher(cipher);
        return out;
    }
};

TEST_F(KitSession, TypicalSignatureLeavesTheGoldenTrace) {
    logIn();
    generate(sessionLabel, ORVEL_PKI_ALGORITHM_ECC, 256);
    release();
    trace().mark();
    const Bytes signature = runTypicalSession();
    started = false; // it has ended the provider
    EXPECT_GE(signature.size(), 68u);
    EXPECT_EQ(signature[0], 0x30) << "DER";
    EXPECT_EQ(signature[1] + 2u, signature.size());
    EXPECT_EQ(maskedTrace(), goldenTrace("session"));
}

TEST_F(KitSession, PublishedVectors) {
    // GB/T 32905, its two examples; GB/T 32907, its first example, and the same twice in a chain.
    const struct {
        Bytes message, value;
    } digests[] = {
        {hex("616263"), hex("66c7f0f462eeedd9d1f2d46bdc10e4e24167c4875cf2f7a2297da02b8f4ba8e0")},
        {hex("61626364616263646162636461626364616263646162636461626364616263646162636461626364"
             "616263646162636461626364616263646162636461626364"),
         hex("debe9ff92275b8a138604889c18e5a4d6fdb70e5387e5765293dcba39c0c5732")}};
    for (const auto &at : digests) {
        for (const std::size_t step : {1u, 13u, 64u}) {
            SPI_HASH_HANDLE hash = DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3);
            for (std::size_t from = 0; from < at.message.size(); from += step) {
                const auto size = std::min(step, at.message.size() - from);
                EXPECT_EQ(DeviceHashUpdate(hash, &at.message[from], static_cast<int>(size)), 1);
            }
            Bytes value(32);
            int length = 0;
            EXPECT_EQ(DeviceHashFinal(hash, value.data(), 32, &length), 1);
            EXPECT_EQ(value, at.value);
            DeviceFreeHash(hash);
        }
    }
    const Bytes key = hex("0123456789abcdeffedcba9876543210");
    const Bytes block = hex("681edf34d206965e86b3e94f536e4246");
    EXPECT_EQ(ciphered(1, ORVEL_PKI_ALGORITHM_SMS4_ECB, key, key, key, 16), block);
    EXPECT_EQ(ciphered(0, ORVEL_PKI_ALGORITHM_SMS4_ECB, key, key, block, 16), key);
    EXPECT_EQ(ciphered(1, ORVEL_PKI_ALGORITHM_SMS4_CBC, key, Bytes(16), key, 16), block);
}

TEST_F(KitSession, KeysNeedALoginAndLast) {
    const TembraEccParam sm2 = {ORVEL_PKI_ECC_CURVE_SM2, 0};
    SPI_KEYPAIR_HANDLE none = nullptr;
    EXPECT_EQ(DeviceGenerateKeypair(device, ORVEL_PKI_ALGORITHM_ECC, 256, &sm2, 2, "k", &none), -8);
    logIn();
    generate("k", ORVEL_PKI_ALGORITHM_ECC, 256);
    generate("r", ORVEL_PKI_ALGORITHM_RSA, 2048);
    EXPECT_EQ(DeviceGenerateKeypair(device, ORVEL_PKI_ALGORITHM_ECC, 256, &sm2, 2, "k", &none), -6);

    const Bytes certificate = {0x30, 3, 2, 1, 5};
    EXPECT_EQ(DeviceUpdateCertificate(find("k", 2), certificate.data(), 5), 1);
    const Bytes digest(32, 0x42);
    Bytes signature(256);
    int length = 0;
    EXPECT_EQ(DeviceSign(find("r", 2), ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN, nullptr,
                         digest.data(), 32, signature.data(), 256, &length),
              1);
    EXPECT_EQ(length, 256);

    discover(); // logged out again, and everything is still there
    ASSERT_EQ(DeviceGetKeypairCount(device), 2);
    EXPECT_EQ(DeviceGetKeypairBits(find("r", 2)), 2048);
    Bytes read(5);
    EXPECT_EQ(DeviceGetCertificate(find("k", 2), 0, read.data(), 5, &length), 1);
    EXPECT_EQ(read, certificate);
    EXPECT_EQ(DeviceSign(find("k", 2), ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, digest.data(), 32,
                         signature.data(), 80, &length),
              -8);
    EXPECT_EQ(DeviceUpdateCertificate(find("k", 2), certificate.data(), 5), -8);
}

} // namespace
} // namespace tembra::test
