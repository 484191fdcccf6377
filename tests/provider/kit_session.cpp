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
    Bytes ciphered(int enc, int algo, const Bytes &key, const Bytes &iv, const Bytes &block) {
        SPI_CIPHER_HANDLE cipher = DeviceNewCipher(m_device, enc, algo, key.data(), 16, iv.data());
        Bytes out(16);
        int length = 0;
        EXPECT_EQ(DeviceCipherUpdate(cipher, block.data(), 16, out.data(), 16, &length), 1);
        DeviceFreeCipher(cipher);
        return out;
    }
};

TEST_F(KitSession, TypicalSignatureLeavesTheGoldenTrace) {
    logIn();
    generate(SESSION_LABEL, ORVEL_PKI_ALGORITHM_ECC, 256);
    release();
    trace().mark();
    const Bytes signature = runTypicalSession();
    m_started = false; // it has ended the provider
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
            SPI_HASH_HANDLE hash = DeviceNewHash(m_device, ORVEL_PKI_ALGORITHM_SM3);
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
    EXPECT_EQ(ciphered(1, ORVEL_PKI_ALGORITHM_SMS4_ECB, key, key, key), block);
    EXPECT_EQ(ciphered(0, ORVEL_PKI_ALGORITHM_SMS4_ECB, key, key, block), key);
    EXPECT_EQ(ciphered(1, ORVEL_PKI_ALGORITHM_SMS4_CBC, key, Bytes(16), key), block);
}

} // namespace
} // namespace tembra::test
