// Key pair handles: looking them up, their attributes, and their counts when pairs are deleted.
#include "scripted_test.h"

namespace tembra::test {
namespace {

class KeypairHandles : public ScriptedTest {};

TEST_F(KeypairHandles, StandWithinTheirCount) {
    insert({{"empty"}, ecc("sm2", true, true)});
    for (const int index : {-1, 2, 0x7FFFFFFF})
        EXPECT_EQ(DeviceGetKeypair(m_device, index), nullptr);
    EXPECT_EQ(referencesAfterRelease(), 4) << "the set, the device handle, two pairs";
}

TEST_F(KeypairHandles, FindComparesLabelAndType) {
    insert({ecc("sm2", true, false), ecc("both", true, true)});
    const struct {
        const char *label;
        int type;
        int result;
    } cases[] = {{"sm2", 2, 1}, {"both", 1, 1}, {"both", 2, 1}, {"sm2", 1, 0}, {"sm2", 3, 0},
                 {"SM2", 2, 0}, {"sm", 2, 0},   {"sm2 ", 2, 0}, {"", 2, 0}};
    for (const auto &at : cases) {
        SPI_KEYPAIR_HANDLE untouched = reinterpret_cast<SPI_KEYPAIR_HANDLE>(&m_set);
        SPI_KEYPAIR_HANDLE handle = untouched;
        mark();
        EXPECT_EQ(DeviceFindKeypair(m_device, at.type, at.label, &handle), at.result) << at.label;
        EXPECT_EQ(trace().failures(), errors("DeviceFindKeypair",
                                             at.result == 1 ? nullptr : "DeviceFindKeypair fail "));
        EXPECT_EQ(handle != untouched, at.result == 1);
        if (at.result == 1) {
            EXPECT_EQ(DeviceGetKeypairType(handle), at.type);
            DeviceFreeKeypair(handle);
        }
    }
    mark();
    EXPECT_EQ(DeviceFindKeypair(nullptr, 2, "sm2", nullptr), -2);
    EXPECT_EQ(trace().failures(), errors("DeviceFindKeypair", "hDevice==0, rv=0xFFFFFFFE"));
}

// What every entry point answers for a pair that was deleted under its handle.
void expectDetached(SPI_KEYPAIR_HANDLE handle, int type) {
    EXPECT_EQ(DeviceGetKeypairType(handle), type);
    EXPECT_EQ(DeviceGetKeypairBits(handle), 256);
    EXPECT_EQ(DeviceGetKeypairLabel(handle, nullptr, 0, nullptr), 1);
    EXPECT_EQ(DeviceGetPublicKeyFromKeypair(handle), nullptr);
    EXPECT_EQ(DeviceGetCertificateCount(handle), -1);
    int length = 0;
    unsigned char out[128] = {};
    EXPECT_EQ(DeviceGetCertificate(handle, 0, out, sizeof out, &length), -2);
    EXPECT_EQ(DeviceUpdateCertificate(handle, out, sizeof out), -2);
    EXPECT_EQ(DeviceDeleteKeypair(handle), -2);
    EXPECT_EQ(trace().failures().back(),
              error("DeviceDeleteKeypair", "hKeypair->m_device == NULL"));
    const int sm3 = ORVEL_PKI_ALGORITHM_SM3;
    const auto decrypt = [&](unsigned char *clear) {
        return DevicePrivateKeyDecrypt(handle, ORVEL_PKI_ALGORITHM_SM2_ENC, &sm3, out, 100, clear,
                                       100, &length);
    };
    EXPECT_EQ(decrypt(nullptr), 1);
    EXPECT_EQ(length, 100);
    out[0] = 4;
    EXPECT_EQ(decrypt(out), 0);
    EXPECT_EQ(trace().failures().back(),
              error("DevicePrivateKeyDecrypt", "hKeypair->m_device == 0"));
    if (type == ORVEL_PKI_KEYPAIRTYPE_SIGNATURE) {
        const auto sign = [&](unsigned char *signature) {
            return DeviceSign(handle, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, out, 32, signature, 80,
                              &length);
        };
        EXPECT_EQ(sign(nullptr), 1);
        EXPECT_EQ(length, 80);
        EXPECT_EQ(sign(out), 0);
        EXPECT_EQ(trace().failures().back(), error("DeviceSign", "hKeypair->m_device == 0"));
    }
}

// Every handle to a deleted pair, and to the other pair of its container, stays good for its own
// release; AddressSanitizer sees to the rest.
TEST_F(KeypairHandles, OutliveTheDeletionOfTheirPair) {
    const KeptByContract kept;
    insert({ecc("sm2", true, true), ecc("other", true, false)});
    SPI_KEYPAIR_HANDLE sign[3] = {};
    SPI_KEYPAIR_HANDLE encrypt = DeviceGetKeypair(m_device, 1);
    for (SPI_KEYPAIR_HANDLE &handle : sign)
        handle = DeviceGetKeypair(m_device, 0);
    EXPECT_EQ(DeviceDeleteKeypair(sign[1]), 1);
    EXPECT_EQ(DeviceGetKeypairCount(m_device), 1);
    mark();
    expectDetached(sign[0], ORVEL_PKI_KEYPAIRTYPE_SIGNATURE);
    expectDetached(encrypt, ORVEL_PKI_KEYPAIRTYPE_ENCRYPT);
    EXPECT_THAT(callsSinceMark(), IsEmpty()) << "the token is not asked";
    EXPECT_EQ(DeviceFreeKeypair(sign[0]), 1);
    EXPECT_EQ(DeviceGetKeypairType(sign[2]), 2);
    for (SPI_KEYPAIR_HANDLE handle : {sign[1], sign[2], encrypt}) { // not only for the last one
        mark();
        EXPECT_EQ(DeviceFreeKeypair(handle), 1);
        EXPECT_THAT(trace().texts(), ElementsAre(info("DeviceFreeKeypair", "hKeypair = %p"),
                                                 info("DeviceFreeKeypair",
                                                      "freeDevice hKeypair success, hKeypair=%p")));
    }
    keepsHandlesOpen(); // a device that lost a pair is not destroyed any more
}

} // namespace
} // namespace tembra::test
