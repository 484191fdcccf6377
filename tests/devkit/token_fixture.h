// A software token in a directory of its own, connected, with one application opened.
#pragma once

#include "platform/skf.h"
#include "tembra_soft_token.h"

#include "process_environment.h"
#include "temporary_directory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tembra::test {

using Names = std::vector<std::string>;
using Bytes = std::vector<BYTE>;

// The interface takes texts it doesn't change as char *.
inline LPSTR text(const char *name) {
    return const_cast<LPSTR>(name);
}
inline LPSTR text(const std::string &name) {
    return text(name.c_str());
}

// The names of a list, in a buffer of exactly the size that was asked for before.
Names listed(auto function) {
    ULONG size = 0;
    EXPECT_EQ(SAR_OK, function(nullptr, &size));
    std::string list(size, '?');
    EXPECT_EQ(SAR_OK, function(list.data(), &size));
    Names names;
    for (const char *at = list.data(); *at != '\0'; at += names.back().size() + 1)
        names.emplace_back(at);
    return names;
}

class TokenTest : public ::testing::Test {
protected:
    static constexpr const char *adminPin = "12345678";
    static constexpr const char *userPin = "111111";

    TokenTest() {
        setVariable("TEMBRA_SOFT_TOKEN_DIR", directory.path().string());
        setVariable("TEMBRA_SOFT_TOKEN_PIN_ITERATIONS", "10");
        char made[45] = {};
        std::uint32_t size = sizeof made;
        EXPECT_EQ(SAR_OK, TembraSoftTokenCreate(nullptr, made, &size));
        name = made;
        addApplication("APP");
        open();
    }
    // Every handle that close() does not know must be closed by then.
    ~TokenTest() override {
        close();
        EXPECT_EQ(0U, TembraSoftTokenOpenHandles(nullptr));
    }

    // It is the one to open from now on.
    void addApplication(const char *added) {
        applicationName_ = added;
        const TembraSoftTokenApplication options = {sizeof options, 0,        3,      0,
                                                    added,          adminPin, userPin};
        EXPECT_EQ(SAR_OK, TembraSoftTokenAddApplication(name.c_str(), &options));
    }
    void open() {
        EXPECT_EQ(SAR_OK, SKF_ConnectDev(name.data(), &device));
        EXPECT_EQ(SAR_OK, SKF_OpenApplication(device, text(applicationName_), &application));
    }
    // These two and the containers. No handle is ever used again, so one that the test has closed
    // is none by now.
    void close() {
        for (const HCONTAINER container : containers_)
            SKF_CloseContainer(container);
        containers_.clear();
        SKF_CloseApplication(application);
        SKF_DisConnectDev(device);
    }

    ULONG showPin(ULONG type, const char *pin, ULONG *triesLeft = nullptr) {
        return SKF_VerifyPIN(application, type, text(pin), triesLeft);
    }
    void login() { ASSERT_EQ(SAR_OK, showPin(USER_TYPE, userPin)); }
    void loginAdmin() { ASSERT_EQ(SAR_OK, showPin(ADMIN_TYPE, adminPin)); }

    HCONTAINER create(const std::string &container) { return got(SKF_CreateContainer, container); }
    HCONTAINER openContainer(const std::string &container) {
        return got(SKF_OpenContainer, container);
    }
    HCONTAINER createSm2(const char *container) { // with a signature key
        ECCPUBLICKEYBLOB unused = {};
        EXPECT_EQ(SAR_OK, SKF_GenECCKeyPair(create(container), SGD_SM2_1, &unused));
        return containers_.back();
    }
    Names containers() {
        return listed([&](auto... list) { return SKF_EnumContainer(application, list...); });
    }

    TemporaryDirectory directory;
    std::string name;
    DEVHANDLE device = nullptr;
    HAPPLICATION application = nullptr;

private:
    HCONTAINER got(auto function, const std::string &container) {
        EXPECT_EQ(SAR_OK, function(application, text(container), &containers_.emplace_back()));
        return containers_.back();
    }

    const char *applicationName_ = nullptr;
    std::vector<HCONTAINER> containers_;
};

} // namespace tembra::test
