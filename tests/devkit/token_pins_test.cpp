// PINs and what they open.
#include "token_fixture.h"

#include "crypto/sm4.h"

#include <array>

namespace tembra::test {
namespace {

constexpr ULONG untouched = 99;

class TokenPins : public TokenTest {
protected:
    ULONG triesLeft(ULONG type) {
        ULONG left = untouched;
        EXPECT_EQ(SAR_OK, SKF_GetPINInfo(application, type, nullptr, &left, nullptr));
        return left;
    }
    BOOL isDefault() {
        BOOL is = 0;
        EXPECT_EQ(SAR_OK, SKF_GetPINInfo(application, USER_TYPE, nullptr, nullptr, &is));
        return is;
    }
};

TEST_F(TokenPins, TriesRunOutLastAndAreGivenBackByTheAdministrator) {
    const struct {
        const char *pin;
        ULONG result;
        ULONG reported;
    } steps[] = {
        {"12345", SAR_PIN_LEN_RANGE, 3},    {"12345678901234567", SAR_PIN_LEN_RANGE, 3},
        {"222222", SAR_PIN_INCORRECT, 2},   {userPin, SAR_OK, untouched},
        {"222222", SAR_PIN_INCORRECT, 2},   {"1111111", SAR_PIN_INCORRECT, 1},
        {"11111122", SAR_PIN_INCORRECT, 0}, {userPin, SAR_PIN_LOCKED, 0},
    };
    for (const auto &step : steps) {
        SCOPED_TRACE(step.pin);
        ULONG left = untouched;
        EXPECT_EQ(step.result, showPin(USER_TYPE, step.pin, &left));
        if (step.result != SAR_OK) {
            EXPECT_EQ(step.reported, left);
        }
        close(); // and read the file anew
        open();
    }
    ULONG left = untouched;
    EXPECT_EQ(SAR_PIN_LOCKED,
              SKF_ChangePIN(application, USER_TYPE, text(userPin), text("333333"), &left));
    EXPECT_EQ(SAR_PIN_LEN_RANGE, SKF_UnblockPIN(application, text(adminPin), text("1"), nullptr));
    EXPECT_EQ(SAR_PIN_INCORRECT,
              SKF_UnblockPIN(application, text("87654321"), text("333333"), &left));
    EXPECT_EQ(9U, left);
    EXPECT_EQ(1, isDefault());
    EXPECT_EQ(SAR_OK, SKF_UnblockPIN(application, text(adminPin), text("333333"), nullptr));
    EXPECT_EQ(0, isDefault());
    EXPECT_EQ(3U, triesLeft(USER_TYPE));
    EXPECT_EQ(10U, triesLeft(ADMIN_TYPE));
    EXPECT_EQ(SAR_PIN_INCORRECT, showPin(USER_TYPE, userPin));
    EXPECT_EQ(SAR_OK, showPin(USER_TYPE, "333333"));
    EXPECT_NE(SAR_OK, showPin(2, "333333")) << "neither user nor administrator";
}

TEST_F(TokenPins, ALoginIsSharedByTheApplicationsHandlesAndEndsWithTheLast) {
    HAPPLICATION second = nullptr;
    const auto create = [&](HAPPLICATION as, const char *container) {
        HCONTAINER created = nullptr;
        const ULONG result = SKF_CreateContainer(as, text(container), &created);
        SKF_CloseContainer(created);
        return result;
    };
    ASSERT_EQ(SAR_OK, SKF_OpenApplication(device, text("APP"), &second));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, create(second, "a"));
    loginAdmin();
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, create(second, "a")) << "the administrator is no user";
    login();
    EXPECT_EQ(SAR_OK, create(second, "a"));
    EXPECT_EQ(SAR_OK, SKF_CloseApplication(application));
    EXPECT_EQ(SAR_OK, create(second, "b"));
    EXPECT_EQ(SAR_OK, SKF_CloseApplication(second));
    ASSERT_EQ(SAR_OK, SKF_OpenApplication(device, text("APP"), &application));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, create(application, "c"));
    login();
    EXPECT_EQ(SAR_PIN_INCORRECT, showPin(USER_TYPE, "222222"));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, create(application, "c"));
    login();
    EXPECT_EQ(SAR_OK, SKF_ClearSecureState(application));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, create(application, "c"));
}

TEST_F(TokenPins, DeviceAuthenticationAnswersTheLastChallengeOnce) {
    std::array<BYTE, 16> block{};
    const std::array<BYTE, 16> key = {0x12, 0x34, 0x56, 0x78, 0x12, 0x34, 0x56, 0x78,
                                      0x12, 0x34, 0x56, 0x78, 0x12, 0x34, 0x56, 0x78};
    const auto proof = [&] {
        EXPECT_EQ(SAR_OK, SKF_GenRandom(device, block.data(), 8));
        return *crypto::sm4EncryptBlock(key, block);
    };
    EXPECT_NE(SAR_OK, SKF_DevAuth(device, block.data(), 16)) << "no challenge yet";
    auto right = proof();
    EXPECT_EQ(SAR_INDATALENERR, SKF_DevAuth(device, right.data(), 15));
    EXPECT_EQ(SAR_OK, SKF_DevAuth(device, right.data(), 16));
    EXPECT_NE(SAR_OK, SKF_DevAuth(device, right.data(), 16)) << "replayed";
    auto wrong = proof();
    wrong[15] ^= 1;
    EXPECT_EQ(SAR_FAIL, SKF_DevAuth(device, wrong.data(), 16));
}

} // namespace
} // namespace tembra::test
