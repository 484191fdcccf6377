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

// The interface declares constant texts as char *.
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
    static constexpr const char *ADMIN_PIN = "12345678";
    static constexpr const char *USER_PIN = "111111";

    TokenTest() {
        setVariable("TEMBRA_SOFT_TOKEN_DIR", m_directory.path().string());
        char made[45] = {};
        std::uint32_t size = sizeof made;
        EXPECT_EQ(SAR_OK, TembraSoftTokenCreate(nullptr, made, &size));
        m_name = made;
        addApplication("APP");
        open();
    }
    // Tests must have closed the handles that close() does not.
    ~TokenTest() override {
        close();
        EXPECT_EQ(0U, TembraSoftTokenOpenHandles(nullptr));
    }

    // open() opens the last one added.
    void addApplication(const char *added) {
        m_applicationName = added;
        const TembraSoftTokenApplication options = {sizeof options, 0,         3,       0,
                                                    added,          ADMIN_PIN, USER_PIN};
        EXPECT_EQ(SAR_OK, TembraSoftTokenAddApplication(m_name.c_str(), &options));
    }
    void open() {
        EXPECT_EQ(SAR_OK, SKF_ConnectDev(m_name.data(), &m_device));
        EXPECT_EQ(SAR_OK, SKF_OpenApplication(m_device, text(m_applicationName), &m_application));
    }
    // Handles are never reused, so closing one again has no effect.
    void close() {
        for (const HCONTAINER container : m_containers)
            SKF_CloseContainer(container);
        m_containers.clear();
        SKF_CloseApplication(m_application);
        SKF_DisConnectDev(m_device);
    }

    ULONG showPin(ULONG type, const char *pin, ULONG *triesLeft = nullptr) {
        return SKF_VerifyPIN(m_application, type, text(pin), triesLeft);
    }
    void login() { ASSERT_EQ(SAR_OK, showPin(USER_TYPE, USER_PIN)); }
    void loginAdmin() { ASSERT_EQ(SAR_OK, showPin(ADMIN_TYPE, ADMIN_PIN)); }

    HCONTAINER create(const std::string &container) { return got(SKF_CreateContainer, container); }
    HCONTAINER openContainer(const std::string &container) {
        return got(SKF_OpenContainer, container);
    }
    HCONTAINER createSm2(const char *container) { // with a signature key
        ECCPUBLICKEYBLOB unused = {};
        EXPECT_EQ(SAR_OK, SKF_GenECCKeyPair(create(container), SGD_SM2_1, &unused));
        return m_containers.back();
    }
    Names containers() {
        return listed([&](auto... list) { return SKF_EnumContainer(m_application, list...); });
    }

    TemporaryDirectory m_directory;
    std::string m_name;
    DEVHANDLE m_device = nullptr;
    HAPPLICATION m_application = nullptr;

private:
    HCONTAINER got(auto function, const std::string &container) {
        EXPECT_EQ(SAR_OK, function(m_application, text(container), &m_containers.emplace_back()));
        return m_containers.back();
    }

    const char *m_applicationName = nullptr;
    std::vector<HCONTAINER> m_containers;
};

} // namespace tembra::test
