#include "kit_test.h"

#include "platform/orvel_crypto.h"
#include "tembra_devkit_faults.h"
#include "tembra_soft_token.h"

#include <cstdio>

namespace tembra::test {

void KitTest::SetUp() {
    m_handlesBefore = TembraSoftTokenOpenHandles(nullptr);
    m_blocksBefore = TembraHostKitLiveBlocks();
    setVariable("TEMBRA_SOFT_TOKEN_DIR", m_directory.path().string());
    TembraSoftTokenOptions options = {};
    options.size = sizeof options;
    options.serial = "TEST-0123456789A";
    options.label = "Test Token";
    options.issuer = "Test Issuer";
    char name[64];
    std::uint32_t size = sizeof name;
    ASSERT_EQ(TembraSoftTokenCreate(&options, name, &size), 0u);
    m_token = name;
    const TembraSoftTokenApplication application = {sizeof application, 0,       3, 0, "app",
                                                    ADMIN_PIN,          USER_PIN};
    ASSERT_EQ(TembraSoftTokenAddApplication(name, &application), 0u);
    trace().setLevel("5");
    ASSERT_EQ(DeviceInit(), 1);
    m_started = true;
    discover();
}

void KitTest::TearDown() {
    if (HasFailure())
        for (const std::string &text : trace().texts())
            std::printf("  %s\n", text.c_str());
    release();
    if (m_started) {
        EXPECT_EQ(DeviceEnd(), 1);
    }
    if (!m_keepsDevice) {
        EXPECT_EQ(TembraSoftTokenOpenHandles(nullptr), m_handlesBefore);
        EXPECT_EQ(TembraHostKitLiveBlocks(), m_blocksBefore);
    }
    TembraSoftTokenRemove(m_token.c_str());
}

void KitTest::discover() {
    release();
    m_set = DeviceGetAllDevices();
    ASSERT_EQ(DeviceGetDeviceCount(m_set), 1);
    m_device = DeviceGetDevice(m_set, 0);
    trace().mark();
}

void KitTest::logIn() {
    ASSERT_EQ(DeviceVerifyPwd(m_device, TEMBRA_PWD_USER, USER_PIN, nullptr), 1);
}

SPI_KEYPAIR_HANDLE KitTest::generate(const char *label, int algo, int bits) {
    const TembraEccParam sm2 = {ORVEL_PKI_ECC_CURVE_SM2, 0};
    SPI_KEYPAIR_HANDLE handle = nullptr;
    EXPECT_EQ(DeviceGenerateKeypair(m_device, algo, bits,
                                    algo == ORVEL_PKI_ALGORITHM_ECC ? &sm2 : nullptr,
                                    ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, label, &handle),
              1);
    m_pairs.push_back(handle);
    return handle;
}

Bytes KitTest::encrypted(SPI_KEYPAIR_HANDLE pair, int algo, const void *param, const Bytes &plain) {
    const Bytes encoded = exportedKey(pair);
    int length = static_cast<int>(encoded.size());
    void *pseudo = OrvelPKICryptoGetPseudoDevice();
    void *imported = nullptr;
    EXPECT_EQ(OrvelPKICryptoImportPublicKey(pseudo, encoded.data(), length, &imported), 1);
    unsigned char *out = nullptr;
    EXPECT_EQ(OrvelPKICryptoPublicKeyEncrypt(imported, algo, param, plain.data(),
                                             static_cast<int>(plain.size()), &out, &length),
              1);
    const Bytes cipher(out, out + length);
    OrvelPKICryptoFreeMemory(out);
    OrvelPKICryptoFreePublicKey(imported);
    OrvelPKICryptoFreeDevice(pseudo);
    return cipher;
}

} // namespace tembra::test
