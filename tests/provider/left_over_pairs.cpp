// Pairs that stay in the table when their container is deleted: a deletion drops two records, and
// an encryption pair that was imported twice has two of its own.
#include "import_test.h"

#include "provider/records.h"

namespace tembra::test {
namespace {

constexpr TembraEccParam SM2 = {ORVEL_PKI_ECC_CURVE_SM2, 0};

class LeftOverPairs : public ImportTest {
protected:
    // Leaves the second import of "c" in the table, and a container of this name, if any, in the
    // slot that has become free.
    void leaveOver(const char *successor) {
        freeImported();
        resetDevices();
        insert({ecc("c", true, false), ecc("other", true, false)});
        ASSERT_EQ(import(Sm2Envelope().blob()), 1);
        ASSERT_EQ(import(Sm2Envelope().blob()), 1);
        ASSERT_EQ(DeviceDeleteKeypair(pair("c", ORVEL_PKI_KEYPAIRTYPE_SIGNATURE)), 1);
        m_leftOver = m_imported.back();
        if (successor != nullptr) {
            SPI_KEYPAIR_HANDLE made = nullptr;
            ASSERT_EQ(DeviceGenerateKeypair(m_device, ORVEL_PKI_ALGORITHM_ECC, 256, &SM2,
                                            ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, successor, &made),
                      1);
            EXPECT_EQ(made->m_index, m_leftOver->m_index);
            DeviceFreeKeypair(made);
        }
        mark();
    }

    const KeptByContract m_kept;
    SPI_KEYPAIR_HANDLE m_leftOver = nullptr;
};

TEST_F(LeftOverPairs, AreDeletedByTheirLabelUnlessItIsInUse) {
    const char *gone = "SKF_DeleteContainer fail, error = 0x0a000005";
    const struct {
        const char *successor;
        ULONG answer; // of the token; 0: its own
        int result, pairsLeft;
        bool isTokenAsked;
        const char *message;
    } cases[] = {
        {nullptr, 0, 1, 1, true, gone},
        {nullptr, SAR_USER_NOT_LOGGED_IN, -8, 2, true,
         "SKF_DeleteContainer fail, error = 0x0a00002d"},
        {"x", 0, 1, 2, true, gone},
        {"c", 0, 1, 2, false, nullptr},
    };
    for (const auto &row : cases) {
        leaveOver(row.successor);
        if (row.answer != 0)
            script().SKF_DeleteContainer.answerAt(1, row.answer);
        EXPECT_EQ(DeviceDeleteKeypair(m_leftOver), row.result);
        EXPECT_EQ(trace().failures(), errors("DeviceDeleteKeypair", row.message));
        EXPECT_EQ(callsSinceMark(), row.isTokenAsked
                                        ? std::vector<std::string>{"SKF_DeleteContainer"}
                                        : std::vector<std::string>{});
        EXPECT_STREQ(script().SKF_DeleteContainer.argument<1>(), "c");
        EXPECT_EQ(DeviceGetKeypairCount(m_device), row.pairsLeft);
        EXPECT_EQ(m_leftOver->m_device == nullptr, row.result == 1);
    }
    keepsHandlesOpen();
}

TEST_F(LeftOverPairs, UseNoContainerThatTookTheirSlot) {
    const char *message =
        "hKeypair->m_device->m_containers[hKeypair->m_index] != hKeypair->m_container";
    const int sm3 = ORVEL_PKI_ALGORITHM_SM3;
    unsigned char bytes[100] = {4};
    int length = 0;
    for (const char *successor : {static_cast<const char *>(nullptr), "x", "c"}) {
        leaveOver(successor);
        EXPECT_EQ(DevicePrivateKeyDecrypt(m_leftOver, ORVEL_PKI_ALGORITHM_SM2_ENC, &sm3, bytes, 100,
                                          bytes, 100, &length),
                  0);
        EXPECT_EQ(DeviceGetPublicKeyFromKeypair(m_leftOver), nullptr);
        EXPECT_THAT(trace().failures(),
                    ElementsAre(error("DevicePrivateKeyDecrypt", message),
                                error("DeviceGetPublicKeyFromKeypair", message)));
        EXPECT_EQ(DeviceGetCertificateCount(m_leftOver), -1);
        EXPECT_EQ(DeviceGetCertificate(m_leftOver, 0, bytes, 100, &length), -2);
        EXPECT_EQ(DeviceUpdateCertificate(m_leftOver, bytes, 100), -2);
        EXPECT_THAT(callsSinceMark(), IsEmpty());
    }
    keepsHandlesOpen();
}

} // namespace
} // namespace tembra::test
