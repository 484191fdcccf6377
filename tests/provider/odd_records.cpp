// Records as no discovery makes them: what another thread's deletion, or a stray write of the host,
// can leave. Every entry point has an answer.
#include "key_pair_blobs.h"
#include "scripted_test.h"

#include "provider/records.h"

namespace tembra::test {
namespace {

constexpr const char *CONTAINER_GONE =
    "hKeypair->m_device->m_containers[hKeypair->m_index] != hKeypair->m_container";

class OddRecords : public ScriptedTest {
protected:
    void SetUp() override {
        ScriptedTest::SetUp();
        insert({ecc("c", true, true)});
        m_signer = pair("c", ORVEL_PKI_KEYPAIRTYPE_SIGNATURE);
    }
    int sign() {
        mark();
        return DeviceSign(m_signer, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, m_bytes, 32, m_bytes,
                          100, &m_length);
    }
    int decrypt() {
        const int sm3 = ORVEL_PKI_ALGORITHM_SM3;
        mark();
        m_bytes[0] = 4;
        return DevicePrivateKeyDecrypt(m_signer, ORVEL_PKI_ALGORITHM_SM2_ENC, &sm3, m_bytes, 100,
                                       m_bytes, 100, &m_length);
    }

    SPI_KEYPAIR_HANDLE m_signer = nullptr;
    unsigned char m_bytes[1200] = {};
    int m_length = 0;
};

TEST_F(OddRecords, UnknownAlgorithm) {
    m_signer->m_algo = 2;
    EXPECT_EQ(sign(), -1);
    EXPECT_THAT(trace().failures(), ElementsAre(error("DeviceSign", "error algo")));
    EXPECT_EQ(decrypt(), 0);
    EXPECT_THAT(trace().failures(),
                ElementsAre(error("DevicePrivateKeyDecrypt",
                                  "unsupport hKeypair->m_algo, hKeypair->m_algo = 2")));
}

TEST_F(OddRecords, UnknownKeyType) {
    m_signer->m_keytype = 3;
    EXPECT_EQ(DeviceGetPublicKeyFromKeypair(m_signer), nullptr);
    EXPECT_TRUE(trace().contains(
        info("DeviceGetPublicKeyFromKeypair", "unsupported keytype! hKeypair->m_keytype : 3")));
    EXPECT_EQ(DeviceGetCertificateCount(m_signer), -1);
}

TEST_F(OddRecords, EmptyPublicKeyAndNoSerialNumber) {
    SPI_PUBLICKEY_HANDLE key = DeviceGetPublicKeyFromKeypair(m_signer);
    key->m_pubKeyLen = 0;
    mark();
    EXPECT_EQ(DeviceExportPublicKey(key, m_bytes, 1000, &m_length), -1);
    EXPECT_THAT(trace().failures(),
                ElementsAre(error("DeviceExportPublicKey", "m_pubKey==0 || m_pubKey<=0 ")));
    DeviceFreePublicKey(key);
    std::free(m_device->m_serialNumber);
    m_device->m_serialNumber = nullptr;
    mark();
    EXPECT_EQ(DeviceGetSerialNumber(m_device, nullptr, 0, &m_length), 0);
    EXPECT_THAT(trace().failures(),
                ElementsAre(error("DeviceGetSerialNumber", "rv = hDevice->m_serialNumber == 0")));
}

TEST_F(OddRecords, ContainerGone) {
    for (const int index : {0, -1, 32}) { // no container there, or no slot
        m_signer->m_index = index;
        TembraContainer *container = m_device->m_containers[0];
        m_device->m_containers[0] = nullptr;
        EXPECT_EQ(sign(), 0);
        EXPECT_EQ(trace().failures(), errors("DeviceSign", CONTAINER_GONE));
        EXPECT_EQ(decrypt(), 0);
        EXPECT_EQ(trace().failures(), errors("DevicePrivateKeyDecrypt", CONTAINER_GONE));
        mark();
        EXPECT_EQ(DeviceGetPublicKeyFromKeypair(m_signer), nullptr);
        EXPECT_EQ(trace().failures(), errors("DeviceGetPublicKeyFromKeypair", CONTAINER_GONE));
        EXPECT_EQ(DeviceGetCertificateCount(m_signer), -1);
        EXPECT_EQ(DeviceGetCertificate(m_signer, 0, m_bytes, 10, &m_length), -2);
        EXPECT_EQ(DeviceUpdateCertificate(m_signer, m_bytes, 10), -2);
        m_device->m_containers[0] = container;
    }
}

// Its label names a container that it does not belong to.
TEST_F(OddRecords, ImportForAPairOfAnotherContainer) {
    m_signer->m_container = nullptr;
    const Bytes blob = plainSm2(Bytes(32, 0xDD));
    SPI_KEYPAIR_HANDLE imported = nullptr;
    mark();
    EXPECT_EQ(DeviceImportKeypair(m_device, blob.data(), static_cast<int>(blob.size()),
                                  ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, "c", &imported),
              0);
    EXPECT_EQ(trace().failures(), errors("DeviceImportKeypair", "EncKeyPairBlob()==0"));
    m_signer->m_container = m_device->m_containers[0];
}

// Memory ran out for the copy of a certificate that the token has taken: its length is known.
TEST_F(OddRecords, CertificateWithoutItsCopy) {
    TembraContainer *container = m_device->m_containers[0];
    const unsigned char certificate[] = {1, 2, 3};
    const struct {
        int type;
        const char *message;
    } cases[] = {{2, "hKeypair->m_device->m_containers[hKeypair->m_index]->m_signCert == 0"},
                 {1, "hKeypair->m_device->m_containers[hKeypair->m_index]->m_encCert == 0"}};
    for (const auto &row : cases) {
        SPI_KEYPAIR_HANDLE handle = pair("c", row.type);
        ASSERT_EQ(DeviceUpdateCertificate(handle, certificate, 3), 1);
        auto *&slot = row.type == 2 ? container->m_signCert : container->m_encCert;
        auto *copy = std::exchange(slot, nullptr);
        EXPECT_EQ(DeviceGetCertificateCount(handle), 1);
        for (const auto &[buffer, size, result] :
             {std::tuple(static_cast<unsigned char *>(nullptr), 0, 1),
              {m_bytes, 2, -4},
              {m_bytes, 3, 0}}) {
            m_length = 77;
            mark();
            EXPECT_EQ(DeviceGetCertificate(handle, 0, buffer, size, &m_length), result);
            EXPECT_EQ(m_length, 3);
            EXPECT_EQ(trace().failures(),
                      errors("DeviceGetCertificate", result == 0 ? row.message : nullptr));
        }
        slot = copy;
    }
}

// A host library that says success and gives nothing.
TEST_F(OddRecords, SignatureOfNothing) {
    for (const int size : {67, 0, -1}) {
        script().OrvelPKICryptoEncodeECCSignature.run(
            [size](auto, auto, auto, auto, unsigned char **out, int *outLen) {
                *out = nullptr;
                *outLen = size;
                return 1;
            });
        EXPECT_EQ(sign(), 0);
        EXPECT_THAT(
            trace().failures(),
            ElementsAre(error("DeviceSign", "OrvelPKICryptoEncodeECCSignature returned nothing")));
    }
}

TEST_F(OddRecords, PublicKeyOfMoreThan1024Bytes) {
    for (const int size : {1024, 1025, 5000}) {
        script().OrvelPKICryptoEncodeECCPubKey.run([size](auto, auto, auto, auto, auto,
                                                          unsigned char **out, int *outLength) {
            const Bytes filler(static_cast<std::size_t>(size), 'k');
            return memory_token::OrvelPKICryptoEncodeRSAPubKey(filler.data(), size - 7,
                                                               filler.data(), 4, out, outLength);
        });
        resetDevices();
        insert({ecc("sm2", true, false)});
        SPI_PUBLICKEY_HANDLE key = DeviceGetPublicKeyFromKeypair(pair("sm2", 2));
        EXPECT_EQ(key != nullptr, size <= 1024);
        EXPECT_EQ(trace().failures().size(), size <= 1024 ? 0u : 1u);
        DeviceFreePublicKey(key);
    }
}

TEST_F(OddRecords, KeylessContainerWithAKey) {
    const TembraEccParam sm2 = {ORVEL_PKI_ECC_CURVE_SM2, 0};
    m_device->m_containers[0]->m_type = CONTAINER_TYPE_EMPTY;
    SPI_KEYPAIR_HANDLE made = nullptr;
    EXPECT_EQ(DeviceGenerateKeypair(m_device, ORVEL_PKI_ALGORITHM_ECC, 256, &sm2,
                                    ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, "new", &made),
              1);
    DeviceFreeKeypair(made); // the old key was given back, or the fixture finds it
}

} // namespace
} // namespace tembra::test
