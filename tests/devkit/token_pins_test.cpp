// PINs and what they open.
#include "token_fixture.h"

#include "tembra_devkit_faults.h"

#include "crypto/hex.h"
#include "crypto/sm4.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace tembra::test {
namespace {

constexpr ULONG UNTOUCHED = 99;

using TokenPins = TokenTest;

TEST_F(TokenPins, TriesRunOutLastAndAreGivenBackByTheAdministrator) {
    const struct {
        const char *pin;
        ULONG result, left;
    } steps[] = {
        {"12345", SAR_PIN_LEN_RANGE, 3},    {"12345678901234567", SAR_PIN_LEN_RANGE, 3},
        {"222222", SAR_PIN_INCORRECT, 2},   {USER_PIN, SAR_OK, 3},
        {"222222", SAR_PIN_INCORRECT, 2},   {"1111111", SAR_PIN_INCORRECT, 1},
        {"11111122", SAR_PIN_INCORRECT, 0}, {USER_PIN, SAR_PIN_LOCKED, 0},
    };
    const auto journal = m_directory.path() / "journal";
    ASSERT_EQ(1, TembraSoftTokenSetJournal(journal.string().c_str()));
    for (const auto &step : steps) {
        SCOPED_TRACE(step.pin);
        ULONG left = UNTOUCHED;
        EXPECT_EQ(step.result, showPin(USER_TYPE, step.pin, &left));
        EXPECT_EQ(step.left, left);
        close(); // and read the file anew
        open();
    }
    const auto unblock = [&](const char *pin, const char *newPin, ULONG *left = nullptr) {
        return SKF_UnblockPIN(m_application, text(pin), text(newPin), left);
    };
    ULONG most = UNTOUCHED, left = UNTOUCHED;
    BOOL isDefault = 1;
    EXPECT_EQ(SAR_PIN_LOCKED,
              SKF_ChangePIN(m_application, USER_TYPE, text(USER_PIN), text("333333"), &left));
    EXPECT_EQ(SAR_PIN_LEN_RANGE, unblock(ADMIN_PIN, "1"));
    EXPECT_EQ(SAR_PIN_INCORRECT, unblock("87654321", "333333", &left));
    EXPECT_EQ(9U, left);
    EXPECT_EQ(SAR_OK, unblock(ADMIN_PIN, "333333"));
    EXPECT_EQ(SAR_OK, SKF_GetPINInfo(m_application, USER_TYPE, &most, &left, &isDefault));
    EXPECT_TRUE(most == 3 && left == 3 && isDefault == 0);
    EXPECT_EQ(SAR_PIN_INCORRECT, showPin(USER_TYPE, USER_PIN));
    EXPECT_EQ(SAR_OK, showPin(USER_TYPE, "333333"));
    EXPECT_NE(SAR_OK, showPin(2, "333333")) << "neither user nor administrator";

    TembraSoftTokenSetJournal(nullptr);
    const std::string lines = readFile(journal);
    EXPECT_NE(std::string::npos, lines.find("\"SKF_UnblockPIN\""));
    for (const std::string pin : {USER_PIN, ADMIN_PIN, "333333"})
        EXPECT_EQ(std::string::npos, lines.find('"' + pin + '"')) << lines;
}

TEST_F(TokenPins, ALoginIsSharedByTheApplicationsHandlesAndEndsWithTheLast) {
    HAPPLICATION second = nullptr;
    const auto use = [](HAPPLICATION as) { return SKF_DeleteContainer(as, text("none")); };
    ASSERT_EQ(SAR_OK, SKF_OpenApplication(m_device, text("APP"), &second));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, use(second));
    loginAdmin();
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, use(second)) << "the administrator is no user";
    login();
    EXPECT_EQ(SAR_FILE_NOT_EXIST, use(second));
    EXPECT_EQ(SAR_OK, SKF_CloseApplication(m_application));
    EXPECT_EQ(SAR_FILE_NOT_EXIST, use(second));
    EXPECT_EQ(SAR_OK, SKF_CloseApplication(second));
    ASSERT_EQ(SAR_OK, SKF_OpenApplication(m_device, text("APP"), &m_application));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, use(m_application));
    login();
    EXPECT_EQ(SAR_PIN_INCORRECT, showPin(USER_TYPE, "222222"));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, use(m_application));
    login();
    EXPECT_EQ(SAR_OK, SKF_ClearSecureState(m_application));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, use(m_application));
}

TEST_F(TokenPins, NoTryIsAnsweredThatCannotBeDeducted) {
    const auto temporary = m_directory.path() / (m_name + ".json.tmp");
    std::filesystem::create_directory(temporary); // where the token's file would be written
    for (const char *pin : {USER_PIN, "222222"}) {
        ULONG left = UNTOUCHED;
        EXPECT_EQ(SAR_FILEERR, showPin(USER_TYPE, pin, &left));
        EXPECT_EQ(3U, left);
    }
    std::filesystem::remove(temporary);
    EXPECT_EQ(SAR_OK, showPin(USER_TYPE, USER_PIN));
}

TEST_F(TokenPins, ATokenOfTheOldFormatIsRefusedAndCanBeRemoved) {
    close();
    const auto file = m_directory.path() / (m_name + ".json");
    std::string text = readFile(file);
    text.replace(text.find("\"version\": 2"), 12, "\"version\": 1");
    std::ofstream(file) << text;
    testing::internal::CaptureStderr();
    EXPECT_EQ(SAR_FAIL, SKF_ConnectDev(m_name.data(), &m_device));
    EXPECT_EQ(SAR_FAIL, TembraSoftTokenPlug(m_name.c_str()));
    const std::string message = testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, message.find("token create")) << message;
    EXPECT_EQ(1, std::count(message.begin(), message.end(), '\n'));
    EXPECT_EQ(SAR_OK, TembraSoftTokenRemove(m_name.c_str()));
}

TEST_F(TokenPins, DeviceAuthenticationAnswersTheLastChallengeOnce) {
    const Bytes key = *crypto::fromHex("12345678123456781234567812345678");
    Bytes block(16);
    EXPECT_NE(SAR_OK, SKF_DevAuth(m_device, block.data(), 16)) << "no challenge yet";
    EXPECT_EQ(SAR_OK, SKF_GenRandom(m_device, block.data(), 8));
    auto proof = *crypto::sm4EncryptBlock(key, block);
    EXPECT_EQ(SAR_INDATALENERR, SKF_DevAuth(m_device, proof.data(), 15));
    EXPECT_EQ(SAR_OK, SKF_DevAuth(m_device, proof.data(), 16));
    EXPECT_NE(SAR_OK, SKF_DevAuth(m_device, proof.data(), 16)) << "replayed";
}

} // namespace
} // namespace tembra::test
