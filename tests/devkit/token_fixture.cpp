#include "token_fixture.h"

namespace tembra::test {

TokenTest::TokenTest() {
    setVariable("TEMBRA_SOFT_TOKEN_DIR", directory.path().string());
    setVariable("TEMBRA_SOFT_TOKEN_PIN_ITERATIONS", "10");
    char made[45] = {};
    std::uint32_t size = sizeof made;
    EXPECT_EQ(SAR_OK, TembraSoftTokenCreate(nullptr, made, &size));
    name = made;
    addApplication("APP");
    open();
}

TokenTest::~TokenTest() {
    close();
    EXPECT_EQ(0U, TembraSoftTokenOpenHandles(nullptr));
}

void TokenTest::open() {
    EXPECT_EQ(SAR_OK, SKF_ConnectDev(name.data(), &device));
    EXPECT_EQ(SAR_OK, SKF_OpenApplication(device, text(applicationName_), &application));
}

// No handle is ever used again, so one that the test has closed is none by now.
void TokenTest::close() {
    for (const HCONTAINER container : containers_)
        SKF_CloseContainer(container);
    containers_.clear();
    SKF_CloseApplication(application);
    SKF_DisConnectDev(device);
}

void TokenTest::addApplication(const char *added) {
    applicationName_ = added;
    const TembraSoftTokenApplication options = {sizeof options, 0, 3, 0, added, adminPin, userPin};
    EXPECT_EQ(SAR_OK, TembraSoftTokenAddApplication(name.c_str(), &options));
}

HCONTAINER TokenTest::create(const std::string &container) {
    EXPECT_EQ(SAR_OK,
              SKF_CreateContainer(application, text(container), &containers_.emplace_back()));
    return containers_.back();
}

HCONTAINER TokenTest::openContainer(const std::string &container) {
    EXPECT_EQ(SAR_OK, SKF_OpenContainer(application, text(container), &containers_.emplace_back()));
    return containers_.back();
}

HCONTAINER TokenTest::createSm2(const char *container) {
    ECCPUBLICKEYBLOB unused = {};
    const HCONTAINER handle = create(container);
    EXPECT_EQ(SAR_OK, SKF_GenECCKeyPair(handle, SGD_SM2_1, &unused));
    return handle;
}

Names TokenTest::containers() {
    return listed(
        [&](char *list, ULONG *size) { return SKF_EnumContainer(application, list, size); });
}

} // namespace tembra::test
