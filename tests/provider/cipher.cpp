// Block ciphers: the chain across pieces and calls, in place and not, and what goes to the token.
#include "scripted_test.h"

#include <cstring>

namespace tembra::test {
namespace {

constexpr int SM4_CBC = ORVEL_PKI_ALGORITHM_SMS4_CBC;
constexpr int SM4_ECB = ORVEL_PKI_ALGORITHM_SMS4_ECB;

Bytes counting(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(i * 31 + 7);
    return bytes;
}

class Ciphers : public ScriptedTest {
protected:
    // The data through a new cipher in updates of these sizes, the last one repeated.
    Bytes run(int enc, int algo, const Bytes &data, std::vector<int> sizes, bool inPlace) {
        SPI_CIPHER_HANDLE cipher =
            DeviceNewCipher(m_device, enc, algo, m_key.data(), 16, m_iv.data());
        EXPECT_NE(cipher, nullptr);
        Bytes out = inPlace ? data : Bytes(data.size());
        for (std::size_t at = 0, i = 0; at < data.size(); ++i) {
            const int size =
                std::min(sizes[std::min(i, sizes.size() - 1)], static_cast<int>(data.size() - at));
            int length = 0;
            EXPECT_EQ(DeviceCipherUpdate(cipher, inPlace ? &out[at] : &data[at], size, &out[at],
                                         size, &length),
                      1);
            EXPECT_EQ(length, size);
            at += static_cast<std::size_t>(size);
        }
        DeviceFreeCipher(cipher);
        return out;
    }

    const Bytes m_key = counting(16);
    const Bytes m_iv = Bytes(16, 0xA5);
};

TEST_F(Ciphers, ChainAcrossPiecesAndCalls) {
    const Bytes plain = counting(2560);
    for (const char *setting :
         {"", "\"MaxOperationLen\"=dword:00000010\r\n", "\"MaxOperationLen\"=dword:00000030\r\n",
          "\"MaxOperationLen\"=dword:7fffffff\r\n"}) {
        restart(setting);
        resetDevices();
        insert({});
        for (const int algo : {SM4_CBC, SM4_ECB}) {
            const Bytes cipher = toyEncrypt(m_key, algo == SM4_CBC ? m_iv : Bytes(), plain);
            for (const std::vector<int> &sizes :
                 {std::vector<int>{2560}, {16}, {16, 32, 1024}, {1040, 16}, {1024}}) {
                for (const bool inPlace : {false, true}) {
                    EXPECT_EQ(run(1, algo, plain, sizes, inPlace), cipher) << setting << sizes[0];
                    EXPECT_EQ(run(0, algo, cipher, sizes, inPlace), plain) << setting << sizes[0];
                }
            }
        }
    }
}

TEST_F(Ciphers, EveryPieceIsAWholeOperation) {
    insert({});
    const Bytes plain = counting(2560);
    const Bytes cipher = run(1, SM4_CBC, plain, {2560}, false);
    ASSERT_EQ(script().SKF_Encrypt.calls(), 3);
    const ULONG sizes[] = {1024, 1024, 512};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(script().SKF_Encrypt.argument<2>(i), sizes[i]);
        const unsigned char *before =
            i == 0 ? m_iv.data() : &cipher[1024 * static_cast<std::size_t>(i) - 16];
        BLOCKCIPHERPARAM expected{};
        std::copy_n(before, 16, expected.IV);
        expected.IVLen = 16;
        const BLOCKCIPHERPARAM used = script().SKF_EncryptInit.argument<1>(i);
        EXPECT_EQ(std::memcmp(&used, &expected, sizeof used), 0) << i;
    }
    run(0, SM4_ECB, plain, {2560}, false);
    const BLOCKCIPHERPARAM none{};
    const BLOCKCIPHERPARAM used = script().SKF_DecryptInit.argument<1>();
    EXPECT_EQ(std::memcmp(&used, &none, sizeof used), 0);
}

// Most tokens refuse pieces that are not whole blocks; for one that takes them, the chain is the
// last 16 bytes of all that came before.
TEST_F(Ciphers, ChainAfterShortPieces) {
    insert({});
    Bytes ivs;
    const auto start = [&ivs](HANDLE, const BLOCKCIPHERPARAM &parameter) {
        ivs.insert(ivs.end(), parameter.IV, parameter.IV + parameter.IVLen);
        return SAR_OK;
    };
    const auto invert = [](HANDLE, const BYTE *in, ULONG size, BYTE *out, ULONG *) {
        std::transform(in, in + size, out, [](BYTE byte) { return static_cast<BYTE>(~byte); });
        return SAR_OK;
    };
    script().SKF_EncryptInit.run(start);
    script().SKF_DecryptInit.run(start);
    script().SKF_Encrypt.run(invert);
    script().SKF_Decrypt.run(invert);
    const Bytes plain = counting(60);
    Bytes cipher = plain;
    for (unsigned char &byte : cipher)
        byte = static_cast<unsigned char>(~byte);
    Bytes expected;
    Bytes chain = m_iv;
    const std::vector<int> sizes = {5, 1, 15, 16, 20, 3};
    std::size_t begin = 0;
    for (const int size : sizes) {
        expected.insert(expected.end(), chain.end() - 16, chain.end());
        const auto from = cipher.begin() + static_cast<std::ptrdiff_t>(begin);
        chain.insert(chain.end(), from, from + size);
        begin += static_cast<std::size_t>(size);
    }
    ASSERT_EQ(begin, plain.size());
    for (const bool inPlace : {false, true}) {
        for (const int enc : {1, 0}) {
            ivs.clear();
            EXPECT_EQ(run(enc, SM4_CBC, enc ? plain : cipher, sizes, inPlace),
                      enc ? cipher : plain);
            EXPECT_EQ(ivs, expected) << enc << inPlace;
        }
    }
}

TEST_F(Ciphers, AlgorithmsAndKeys) {
    insert({});
    const struct {
        int algo;
        ULONG token; // 0: refused
        bool chained;
    } cases[] = {{ORVEL_PKI_ALGORITHM_SSF33_ECB, SGD_SSF33_ECB, false},
                 {ORVEL_PKI_ALGORITHM_SSF33_CBC, SGD_SSF33_CBC, true},
                 {ORVEL_PKI_ALGORITHM_SM1_ECB, SGD_SM1_ECB, false},
                 {ORVEL_PKI_ALGORITHM_SM1_CBC, SGD_SM1_CBC, true},
                 {ORVEL_PKI_ALGORITHM_SMS4_ECB, SGD_SMS4_ECB, false},
                 {ORVEL_PKI_ALGORITHM_SMS4_CBC, SGD_SMS4_CBC, true},
                 {ORVEL_PKI_ALGORITHM_SM3, 0, false},
                 {0, 0, false},
                 {-1, 0, false}};
    for (const auto &at : cases) {
        for (const unsigned char *param :
             {m_iv.data(), static_cast<const unsigned char *>(nullptr)}) {
            SPI_CIPHER_HANDLE cipher =
                DeviceNewCipher(m_device, 1, at.algo, m_key.data(), 16, param);
            EXPECT_EQ(cipher != nullptr, at.token != 0 && (param != nullptr || !at.chained));
            if (cipher != nullptr)
                EXPECT_EQ(script().SKF_SetSymmKey.argument<2>(), at.token);
            DeviceFreeCipher(cipher);
        }
    }
    EXPECT_THAT(trace().failures(), IsEmpty());
    for (const int size : {0, 8, 15, 17, 32, -16})
        EXPECT_EQ(DeviceNewCipher(m_device, 1, SM4_ECB, m_key.data(), size, nullptr), nullptr);
}

TEST_F(Ciphers, UpdateChecksItsArguments) {
    insert({});
    SPI_CIPHER_HANDLE cipher = DeviceNewCipher(m_device, 1, SM4_ECB, m_key.data(), 16, nullptr);
    Bytes in(16), out(16, 0xEE);
    const struct {
        unsigned char *in;
        int inlen;
        unsigned char *out;
        int outlen, result, length;
    } cases[] = {
        {in.data(), -1, out.data(), 16, -1, 77}, {nullptr, 0, nullptr, -1, 1, 0},
        {nullptr, 0, out.data(), 0, 1, 0},       {nullptr, 0, out.data(), -1, -1, 0},
        {nullptr, 16, out.data(), 16, -1, 16},   {in.data(), 16, nullptr, 0, 1, 16},
        {in.data(), 16, out.data(), 15, -4, 16}, {in.data(), 16, out.data(), -1, -4, 16},
    };
    mark();
    for (const auto &at : cases) {
        int length = 77;
        EXPECT_EQ(DeviceCipherUpdate(cipher, at.in, at.inlen, at.out, at.outlen, &length),
                  at.result);
        EXPECT_EQ(length, at.length);
    }
    EXPECT_EQ(DeviceCipherUpdate(cipher, in.data(), 16, out.data(), 16, nullptr), -1);
    EXPECT_TRUE(trace().texts().back().ends_with("outlen = 16, int *pretoutlen = 0"));
    EXPECT_THAT(trace().failures(), IsEmpty());
    EXPECT_EQ(out, Bytes(16, 0xEE));
    EXPECT_EQ(script().SKF_EncryptInit.calls(), 0);
    DeviceFreeCipher(cipher);
}

TEST_F(Ciphers, FailuresOfTheTokenKeepTheChain) {
    insert({});
    const Bytes plain = counting(48), cipherText = toyEncrypt(m_key, m_iv, plain);
    const struct {
        int enc;
        std::function<void()> fault;
    } cases[] = {
        {1, [] { script().SKF_EncryptInit.answerAt(1, SAR_FAIL); }},
        {1, [] { script().SKF_Encrypt.answerAt(1, SAR_FAIL); }},
        {0, [] { script().SKF_DecryptInit.answerAt(1, SAR_FAIL); }},
        {0, [] { script().SKF_Decrypt.answerAt(1, SAR_FAIL); }},
    };
    Bytes out(48);
    int length = 0;
    for (const auto &at : cases) {
        SPI_CIPHER_HANDLE cipher =
            DeviceNewCipher(m_device, at.enc, SM4_CBC, m_key.data(), 16, m_iv.data());
        const Bytes &in = at.enc ? plain : cipherText;
        EXPECT_EQ(DeviceCipherUpdate(cipher, in.data(), 16, out.data(), 16, &length), 1);
        at.fault();
        EXPECT_EQ(DeviceCipherUpdate(cipher, &in[16], 32, &out[16], 32, &length), 0);
        EXPECT_EQ(DeviceCipherUpdate(cipher, &in[16], 32, &out[16], 32, &length), 1);
        EXPECT_EQ(out, at.enc ? cipherText : plain) << "the chain goes on where it was";
        DeviceFreeCipher(cipher);
    }
    SPI_CIPHER_HANDLE cipher = DeviceNewCipher(m_device, 1, SM4_CBC, m_key.data(), 16, m_iv.data());
    mark();
    EXPECT_EQ(DeviceCipherUpdate(cipher, plain.data(), 17, out.data(), 48, &length), 0);
    EXPECT_EQ(trace().failures(), errors("cipherUpdate", "SKF_Encrypt fail, error = 0x0A000010"));
    script().SKF_Encrypt.run([](auto, auto, auto, auto, ULONG *size) {
        --*size;
        return SAR_OK;
    });
    mark();
    EXPECT_EQ(DeviceCipherUpdate(cipher, plain.data(), 16, out.data(), 48, &length), 0);
    EXPECT_EQ(trace().failures(), errors("cipherUpdate", "partOutLen != len"));
    DeviceFreeCipher(cipher);
}

} // namespace
} // namespace tembra::test
