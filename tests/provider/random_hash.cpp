// Random numbers and SM3 digests: the pieces that reach the token, and handles by the hundred.
#include "scripted_test.h"

namespace tembra::test {
namespace {

constexpr int SM3 = ORVEL_PKI_ALGORITHM_SM3;

class RandomAndHash : public ScriptedTest {
protected:
    std::vector<ULONG> pieces(int from) {
        std::vector<ULONG> sizes;
        for (int i = from; i < script().SKF_DigestUpdate.calls(); ++i)
            sizes.push_back(script().SKF_DigestUpdate.argument<2>(i));
        return sizes;
    }
};

TEST_F(RandomAndHash, HashesInPiecesOfTheOperationLength) {
    const struct {
        const char *setting;
        int size;
        std::vector<ULONG> pieces;
    } cases[] = {{"", 2500, {1024, 1024, 452}},
                 {"\"MaxOperationLen\"=dword:00000010\r\n", 40, {16, 16, 8}},
                 {"\"MaxOperationLen\"=dword:7fffffff\r\n", 2500, {1024, 1024, 452}},
                 {"\"MaxOperationLen\"=dword:7ffffff0\r\n", 2500, {2500}}};
    Bytes data(2500);
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<unsigned char>(i * 7);
    for (const auto &at : cases) {
        restart(at.setting);
        resetDevices();
        insert({});
        SPI_HASH_HANDLE hash = DeviceNewHash(m_device, SM3);
        const int from = script().SKF_DigestUpdate.calls();
        EXPECT_EQ(DeviceHashUpdate(hash, data.data(), at.size), 1);
        EXPECT_EQ(pieces(from), at.pieces);
        Bytes fed;
        for (HandleModel &handle : script().memory.handles)
            if (handle.kind == HandleKind::digest && handle.open)
                fed = handle.digested;
        EXPECT_EQ(fed, Bytes(data.begin(), data.begin() + at.size));
        EXPECT_EQ(DeviceFreeHash(hash), 1);
    }
    EXPECT_EQ(script().SKF_DigestInit.argument<1>(), SGD_SM3);
    EXPECT_EQ(script().SKF_DigestInit.argument<2>(), nullptr);
    EXPECT_EQ(script().SKF_DigestInit.argument<3>(), nullptr);
    EXPECT_EQ(script().SKF_DigestInit.argument<4>(), 0u);
}

TEST_F(RandomAndHash, RandomNumbersNeedABuffer) {
    insert({});
    unsigned char bytes[4] = {};
    EXPECT_EQ(DeviceGenerateRandom(m_device, 4, nullptr), 0);
    EXPECT_EQ(DeviceGenerateRandom(m_device, -1, bytes), 0);
    EXPECT_EQ(DeviceGenerateRandom(m_device, -1, nullptr), 0);
    EXPECT_THAT(callsSinceMark(), IsEmpty());
    EXPECT_THAT(trace().failures(), IsEmpty());
    EXPECT_EQ(DeviceGenerateRandom(m_device, 0, bytes), 1);
    EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_GenRandom"));
}

TEST_F(RandomAndHash, HashChecksAndFailures) {
    insert({});
    EXPECT_EQ(DeviceNewHash(m_device, 0x7001), nullptr);
    EXPECT_EQ(trace().failures(), errors("DeviceNewHash", "only support sm3"));

    SPI_HASH_HANDLE hash = DeviceNewHash(m_device, SM3);
    mark();
    Bytes data(2500), value(40, 0xEE);
    int length = 77;
    EXPECT_EQ(DeviceHashUpdate(hash, nullptr, 0), 1);
    EXPECT_EQ(DeviceHashUpdate(hash, data.data(), -1), -1);
    EXPECT_EQ(DeviceHashUpdate(hash, nullptr, 1), -1);
    EXPECT_EQ(DeviceHashFinal(hash, value.data(), 32, nullptr), -1);
    EXPECT_EQ(script().SKF_DigestUpdate.calls(), 0);
    EXPECT_THAT(trace().failures(), IsEmpty());
    script().SKF_DigestUpdate.answerAt(2, SAR_FAIL);
    EXPECT_EQ(DeviceHashUpdate(hash, data.data(), 2500), 0);
    EXPECT_EQ(script().SKF_DigestUpdate.calls(), 2) << "the third piece is not tried";
    script().SKF_DigestFinal.run([](auto, auto, ULONG *size) {
        EXPECT_EQ(*size, 40u);
        *size = 7;
        return SAR_OK;
    });
    EXPECT_EQ(DeviceHashFinal(hash, value.data(), 40, &length), 1);
    EXPECT_EQ(length, 32) << "whatever the token reports";
    DeviceFreeHash(hash);
}

TEST_F(RandomAndHash, ListsOfHandlesGrowAndShrink) {
    insert({});
    const unsigned char key[16] = {};
    std::vector<SPI_HASH_HANDLE> hashes;
    std::vector<SPI_CIPHER_HANDLE> ciphers;
    for (int i = 0; i < 150; ++i) {
        hashes.push_back(DeviceNewHash(m_device, SM3));
        ciphers.push_back(
            DeviceNewCipher(m_device, 1, ORVEL_PKI_ALGORITHM_SMS4_ECB, key, 16, nullptr));
        ASSERT_NE(hashes.back(), nullptr);
        ASSERT_NE(ciphers.back(), nullptr);
    }
    EXPECT_EQ(referencesAfterRelease(), 302);
    for (const std::size_t at : {149u, 0u, 63u, 64u, 65u, 128u}) { // last, first, around the growth
        EXPECT_EQ(DeviceFreeHash(hashes[at]), 1);
        EXPECT_EQ(DeviceFreeCipher(ciphers[at]), 1);
    }
    EXPECT_EQ(referencesAfterRelease(), 290);
    EXPECT_EQ(DeviceHashUpdate(hashes[100], key, 16), 1);
    mark();
    release(); // the device takes the others with it
    std::vector<std::string> calls(288, "SKF_CloseHandle");
    calls.insert(calls.end(), {"SKF_CloseApplication", "SKF_DisConnectDev"});
    EXPECT_EQ(callsSinceMark(), calls);
}

} // namespace
} // namespace tembra::test
