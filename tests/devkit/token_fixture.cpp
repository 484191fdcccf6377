#include "token_fixture.h"

#include <algorithm>

namespace tembra::test {

TokenTest::TokenTest() {
    setVariable("TEMBRA_SOFT_TOKEN_DIR", directory.path().string());
    setVariable("TEMBRA_SOFT_TOKEN_PIN_ITERATIONS", "10");
    char made[45] = {};
    std::uint32_t size = sizeof made;
    EXPECT_EQ(SAR_OK, TembraSoftTokenCreate(nullptr, made, &size));
    name = made;
    TembraSoftTokenApplication options = {};
    options.size = sizeof options;
    options.user_tries = 3;
    options.name = "APP";
    options.admin_pin = adminPin;
    options.user_pin = userPin;
    EXPECT_EQ(SAR_OK, TembraSoftTokenAddApplication(name.c_str(), &options));
    open();
}

TokenTest::~TokenTest() {
    close();
    EXPECT_EQ(0U, TembraSoftTokenOpenHandles(nullptr));
}

void TokenTest::open() {
    EXPECT_EQ(SAR_OK, SKF_ConnectDev(name.data(), &device));
    EXPECT_EQ(SAR_OK, SKF_OpenApplication(device, text("APP"), &application));
}

void TokenTest::close() {
    SKF_CloseApplication(application);
    SKF_DisConnectDev(device);
}

HCONTAINER TokenTest::create(const char *container) {
    HCONTAINER handle = nullptr;
    EXPECT_EQ(SAR_OK, SKF_CreateContainer(application, text(container), &handle));
    return handle;
}

HCONTAINER TokenTest::createSm2(const char *container, ECCPUBLICKEYBLOB *blob) {
    ECCPUBLICKEYBLOB unused = {};
    const HCONTAINER handle = create(container);
    EXPECT_EQ(SAR_OK, SKF_GenECCKeyPair(handle, SGD_SM2_1, blob != nullptr ? blob : &unused));
    return handle;
}

HCONTAINER TokenTest::createRsa(const char *container, ULONG bits, RSAPUBLICKEYBLOB *blob) {
    RSAPUBLICKEYBLOB unused = {};
    const HCONTAINER handle = create(container);
    EXPECT_EQ(SAR_OK, SKF_GenRSAKeyPair(handle, bits, blob != nullptr ? blob : &unused));
    return handle;
}

ULONG TokenTest::freeSpace() const {
    DEVINFO info = {};
    EXPECT_EQ(SAR_OK, SKF_GetDevInfo(device, &info));
    return info.FreeSpace;
}

crypto::Sm2PublicKey publicKey(const ECCPUBLICKEYBLOB &blob) {
    crypto::Sm2PublicKey key;
    std::copy_n(blob.XCoordinate + 32, 32, key.x.begin());
    std::copy_n(blob.YCoordinate + 32, 32, key.y.begin());
    return key;
}

} // namespace tembra::test
