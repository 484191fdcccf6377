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

class TokenTest : public ::testing::Test {
protected:
    static constexpr const char *adminPin = "12345678";
    static constexpr const char *userPin = "111111";

    TokenTest();
    ~TokenTest() override; // every other handle of the test must be closed by then

    void open();
    void close(); // these two, and the containers that came from the functions below
    void addApplication(const char *name); // which is the one to open from now on
    ULONG showPin(ULONG type, const char *pin, ULONG *triesLeft = nullptr) {
        return SKF_VerifyPIN(application, type, text(pin), triesLeft);
    }
    void login() { ASSERT_EQ(SAR_OK, showPin(USER_TYPE, userPin)); }
    void loginAdmin() { ASSERT_EQ(SAR_OK, showPin(ADMIN_TYPE, adminPin)); }

    HCONTAINER create(const std::string &name);
    HCONTAINER openContainer(const std::string &name);
    HCONTAINER createSm2(const char *name); // with a signature key
    Names containers();

    TemporaryDirectory directory;
    std::string name;
    DEVHANDLE device = nullptr;
    HAPPLICATION application = nullptr;

private:
    const char *applicationName_ = nullptr;
    std::vector<HCONTAINER> containers_;
};

// The names of a list, after the whole protocol: asking for the size, one byte short, exact.
Names listed(auto function) {
    ULONG size = 0;
    EXPECT_EQ(SAR_OK, function(nullptr, &size));
    std::string list(size, '?');
    ULONG shorter = size - 1;
    EXPECT_EQ(SAR_BUFFER_TOO_SMALL, function(list.data(), &shorter));
    EXPECT_EQ(size, shorter);
    EXPECT_EQ(std::string(size, '?'), list) << "a buffer that is too short stays untouched";
    EXPECT_EQ(SAR_OK, function(list.data(), &size));
    Names names;
    for (const char *at = list.data(); *at != '\0'; at += names.back().size() + 1)
        names.emplace_back(at);
    return names;
}

} // namespace tembra::test
