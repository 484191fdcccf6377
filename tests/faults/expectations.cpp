#include "expectations.h"

#include "../support/scripted_token.h"
#include "tembra_key_prov.h"

#include <algorithm>
#include <vector>

namespace tembra::test {
namespace {

constexpr std::uint32_t NOT_LOGGED_IN = SAR_USER_NOT_LOGGED_IN;

// An empty list, or a null entry point, means any.
struct Row {
    const char *entry;
    std::vector<const char *> calls;
    std::vector<std::uint32_t> codes;
    int result;
};

// The first row that matches counts; without one the entry point returns 0 or null.
// clang-format off
const Row ROWS[] = {
    {"DeviceGetAllDevices", {}, {}, 1}, // what cannot be read is left out
    {"DeviceGenerateKeypair", {"SKF_CreateContainer"}, {NOT_LOGGED_IN, 0xB3}, TEMBRA_NOT_LOGGED_IN},
    {"DeviceGenerateKeypair", {"SKF_GenRSAKeyPair", "SKF_GenECCKeyPair"}, {NOT_LOGGED_IN}, TEMBRA_NOT_LOGGED_IN},
    {"DeviceDeleteKeypair", {"SKF_DeleteContainer"}, {NOT_LOGGED_IN}, TEMBRA_NOT_LOGGED_IN},
    {"DeviceDeleteKeypair", {"SKF_DeleteContainer"}, {}, 1},
    {"DeviceUpdateCertificate", {"SKF_ImportCertificate"}, {NOT_LOGGED_IN}, TEMBRA_NOT_LOGGED_IN},
    {"DeviceSign", {"SKF_RSASignData"}, {NOT_LOGGED_IN}, TEMBRA_NOT_LOGGED_IN},
    {"DeviceSign", {"SKF_ECCSignData"}, {NOT_LOGGED_IN, 0xB3}, TEMBRA_NOT_LOGGED_IN},
    {"DevicePrivateKeyDecrypt", {"SKF_ECCDecrypt"}, {NOT_LOGGED_IN}, TEMBRA_NOT_LOGGED_IN},
    {"DevicePrivateKeyDecrypt", {"SKF_RSADecrypt"}, {NOT_LOGGED_IN, 3}, TEMBRA_NOT_LOGGED_IN},
    {"DeviceImportKeypair", {"SKF_ImportECCKeyPair"}, {SAR_OBJERR, SAR_DECRYPTPADERR, NOT_LOGGED_IN, 0x0B000033, 1}, TEMBRA_NOT_LOGGED_IN},
    {"DeviceImportKeypair", {"SKF_ImportRSAKeyPair"}, {SAR_OBJERR, NOT_LOGGED_IN}, TEMBRA_NOT_LOGGED_IN},
    {nullptr, {"SKF_VerifyPIN", "SKF_ChangePIN"}, {SAR_PIN_INCORRECT}, TEMBRA_WRONG_PIN},
    {nullptr, {"SKF_UnblockPIN"}, {SAR_PIN_LOCKED}, TEMBRA_WRONG_PIN},
    {nullptr, {"SKF_VerifyPIN", "SKF_ChangePIN", "SKF_UnblockPIN"}, {SAR_PIN_LEN_RANGE}, TEMBRA_PIN_LENGTH},
    {"DeviceVerifyPwd", {"SKF_DevAuth"}, {}, TEMBRA_WRONG_PIN},
    {"DeviceCreateData", {"SKF_EnumFiles"}, {}, 1}, // the file counts as missing
    {nullptr, {"SKF_EnumFiles"}, {}, TEMBRA_NOT_FOUND},
    {nullptr, {"SKF_CreateFile", "SKF_ReadFile", "SKF_WriteFile", "SKF_DeleteFile"}, {NOT_LOGGED_IN}, TEMBRA_NOT_LOGGED_IN},
};
// clang-format on

template <typename Some, typename One>
bool matches(const std::vector<Some> &some, const One &one) {
    return some.empty() || std::ranges::find(some, one) != some.end();
}

} // namespace

int expectedResult(const std::string &entry, const std::string &call, std::uint32_t code) {
    if (givesBack(call))
        return 1;
    for (const Row &row : ROWS)
        if ((row.entry == nullptr || entry == row.entry) && matches(row.calls, call) &&
            matches(row.codes, code))
            return row.result;
    return 0;
}

} // namespace tembra::test
