#include "expectations.h"

#include "../support/scripted_function.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace tembra::test {
namespace {

constexpr std::uint32_t NOT_LOGGED_IN = SAR_USER_NOT_LOGGED_IN;

struct Row {
    const char *entry;               // null: every one
    std::vector<const char *> calls; // none: all, also below
    std::vector<std::uint32_t> codes;
    int result;
    const char *line; // of the trace, or null; E and C stand for the entry point and the call
};

// The first row that fits counts. A failure that is in no row answers 0 and writes nothing: those
// of DeviceNewHash and DeviceNewCipher, for instance.
// clang-format off
const Row ROWS[] = {
    {"DeviceInit", {"OrvelPKICryptoGetPseudoDevice"}, {}, 0, "[ERROR] [E] C fail"},
    {"DeviceGetAllDevices", {"SKF_EnumDev"}, {}, 1, "[ERROR] [E] C fail, error : 0x%08X"},
    {"DeviceGetAllDevices", {"SKF_ConnectDev", "SKF_LockDev", "SKF_GetDevInfo"}, {}, 1, "[ERROR] [addDevice] C fail, error = 0x%08X"},
    {"DeviceGetAllDevices", {"SKF_EnumApplication"}, {}, 1, "[ERROR] [addDevice] appNameLen == 0 || appNameList[0] == 0"},
    {"DeviceGetAllDevices", {"SKF_EnumContainer"}, {}, 1, "[ERROR] [getAllContainer] C fail, error = 0x%08X"},
    {"DeviceGetAllDevices", {"SKF_OpenContainer", "SKF_GetContainerType"}, {}, 1, "[ERROR] [getContainer] C fail, error = 0x%08X"},
    {"DeviceGetAllDevices", {"SKF_ExportPublicKey"}, {}, 1, "PublicKey] C fail, error = 0x%08X"},
    {"DeviceGetAllDevices", {"SKF_ExportCertificate"}, {}, 1, "[ERROR] [GetCertificate] C fail, error = 0x%08X"},
    {"DeviceGetAllDevices", {"OrvelPKICryptoEncodeRSAPubKey"}, {}, 1, "[ERROR] [GetRSAPublicKey] C fail, error : %d"},
    {"DeviceGetAllDevices", {"OrvelPKICryptoEncodeECCPubKey"}, {}, 1, "[WARN] [GetECCPublicKey] C fail, error = %d"},
    {"DeviceGetAllDevices", {}, {}, 1, nullptr}, // applications are skipped silently
    {"DeviceGenerateKeypair", {"SKF_CreateContainer"}, {NOT_LOGGED_IN, 0xB3}, -8, "[WARN] [createContainer] rv == SAR_USER_NOT_LOGGED_IN || rv == 0x000000b3"},
    {"DeviceGenerateKeypair", {"SKF_CreateContainer"}, {}, 0, "[ERROR] [createContainer] C fail, error = 0x%08X"},
    {"DeviceGenerateKeypair", {"SKF_GenRSAKeyPair", "SKF_GenECCKeyPair"}, {NOT_LOGGED_IN}, -8, nullptr},
    {"DeviceGenerateKeypair", {"SKF_GenRSAKeyPair", "SKF_GenECCKeyPair"}, {}, 0, "[DEBUG] [GenerateKeypair] C fail, error = 0x%08X"},
    {"DeviceGenerateKeypair", {"OrvelPKICryptoEncodeRSAPubKey"}, {}, 0, "[WARN] [GenerateKeypair] C fail, error = 0"},
    {"DeviceGenerateKeypair", {"OrvelPKICryptoEncodeECCPubKey"}, {}, 0, "[WARN] [GenerateKeypair] C fail, error = %d"},
    {"DeviceDeleteKeypair", {"SKF_DeleteContainer"}, {NOT_LOGGED_IN}, -8, "[ERROR] [E] C fail, error = 0x0a00002d"},
    {"DeviceDeleteKeypair", {"SKF_DeleteContainer"}, {}, 1, "[ERROR] [E] C fail, error = 0x%08x"},
    {"DeviceUpdateCertificate", {"SKF_ImportCertificate"}, {NOT_LOGGED_IN}, -8, "[WARN] [E] rv == SAR_USER_NOT_LOGGED_IN"},
    {"DeviceSign", {"SKF_RSASignData"}, {NOT_LOGGED_IN}, -8, "[ERROR] [E] C fail,rv= SAR_USER_NOT_LOGGED_IN"},
    {"DeviceSign", {"SKF_ECCSignData"}, {NOT_LOGGED_IN, 0xB3}, -8, "[ERROR] [E]  C fail, rv == SAR_USER_NOT_LOGGED_IN || rv == 0x000000b3"},
    {"DeviceSign", {"OrvelPKICryptoEncodeECCSignature"}, {}, 0, "[ERROR] [E] C fail, error = %d"},
    {"DevicePrivateKeyDecrypt", {"SKF_ECCDecrypt"}, {NOT_LOGGED_IN}, -8, nullptr},
    {"DevicePrivateKeyDecrypt", {"SKF_ECCDecrypt"}, {}, 0, "[ERROR] [E] SKF_ECCPrvKeyDecrypt fail, error = 0x%08x"},
    {"DevicePrivateKeyDecrypt", {"SKF_RSADecrypt"}, {NOT_LOGGED_IN, 3}, -8, nullptr},
    {"DevicePrivateKeyDecrypt", {"SKF_RSADecrypt"}, {}, 0, "[ERROR] [E] C fail, error = 0x%08x"},
    {"DeviceImportKeypair", {"OrvelPKICryptoDecodeECCPubKey"}, {}, 0, "[ERROR] [importSM2KeyPair] C fail, error = %d"},
    {"DeviceImportKeypair", {"OrvelPKICryptoDecodeRSAPubKey"}, {}, 0, "[ERROR] [importRSAKeyPair] C fail, error = %d"},
    {"DeviceImportKeypair", {"SKF_ImportECCKeyPair"}, {0x0A00000D, 0x0A00001E, NOT_LOGGED_IN, 0x0B000033, 1}, -8, nullptr},
    {"DeviceImportKeypair", {"SKF_ImportECCKeyPair"}, {}, 0, "[ERROR] [importSM2KeyPair] C fail, error = 0x%08X"},
    {"DeviceImportKeypair", {"SKF_ImportRSAKeyPair"}, {0x0A00000D, NOT_LOGGED_IN}, -8, nullptr},
    {"DeviceImportKeypair", {"SKF_ImportRSAKeyPair"}, {}, 0, "[ERROR] [importRSAKeyPair] C fail, error = 0x%08X"},
    {"DeviceImportKeypair", {"SKF_ExportPublicKey"}, {}, 0, "PublicKey] C fail, error = 0x%08X"},
    {"DeviceImportKeypair", {"OrvelPKICryptoEncodeECCPubKey"}, {}, 0, "[ERROR] [importSM2KeyPair] GetECCPublicKey fail, error = 0"},
    {"DeviceImportKeypair", {"OrvelPKICryptoEncodeRSAPubKey"}, {}, 0, "[ERROR] [importRSAKeyPair] GetRSAPublicKey fail"},
    {"enveloping", {}, {}, 0, "[ERROR] [DeviceImportKeypair] EncKeyPairBlob()==0"},
    {nullptr, {"SKF_VerifyPIN", "SKF_ChangePIN"}, {SAR_PIN_INCORRECT}, -5, nullptr},
    {nullptr, {"SKF_UnblockPIN"}, {SAR_PIN_LOCKED}, -5, nullptr},
    {nullptr, {"SKF_VerifyPIN", "SKF_ChangePIN", "SKF_UnblockPIN"}, {SAR_PIN_LEN_RANGE}, -19, nullptr},
    {nullptr, {"SKF_UnblockPIN"}, {}, 0, "[ERROR] [E] rv != SAR_OK, rv = 0x%08X"},
    {nullptr, {"SKF_GetPINInfo"}, {}, 0, "[ERROR] [E] C fail, error : 0x%08X"},
    {"DeviceVerifyPwd", {"SKF_GenRandom", "SKF_SetSymmKey", "SKF_EncryptInit", "SKF_Encrypt"}, {}, 0, "[ERROR] [ExternalAuth] C fail, error = 0x%08X"},
    {"DeviceVerifyPwd", {"SKF_DevAuth"}, {}, -5, "[ERROR] [ExternalAuth] C fail, error = 0x%08X"},
    {nullptr, {"SKF_ImportCertificate", "SKF_RSASignData", "SKF_ECCSignData", "SKF_VerifyPIN", "SKF_ChangePIN", "SKF_GenRandom", "SKF_DigestUpdate", "SKF_DigestFinal"}, {}, 0, "[ERROR] [E] C fail, error = 0x%08X"},
    {"DeviceCipherUpdate", {"SKF_EncryptInit", "SKF_Encrypt", "SKF_Decrypt"}, {}, 0, "[ERROR] [cipherUpdate] C fail, error = 0x%08X"},
    {"DeviceCreateData", {"SKF_EnumFiles"}, {}, 1, nullptr}, // counts as not there
    {nullptr, {"SKF_EnumFiles"}, {}, -7, nullptr},
    {nullptr, {"SKF_CreateFile", "SKF_ReadFile", "SKF_WriteFile", "SKF_DeleteFile"}, {NOT_LOGGED_IN}, -8, nullptr},
    {nullptr, {"SKF_CreateFile", "SKF_ReadFile", "SKF_WriteFile", "SKF_DeleteFile", "SKF_GetFileInfo"}, {}, 0, "[ERROR] [E] C fail, error = 0x%08x"},
};
// clang-format on

template <typename Some, typename One>
bool holds(const std::vector<Some> &some, const One &one) {
    return some.empty() || std::find(some.begin(), some.end(), one) != some.end();
}

std::string filledIn(std::string line, const std::string &entry, const std::string &call,
                     std::uint32_t code) {
    for (const auto &[mark, value] :
         {std::pair("[E]", "[" + entry + "]"), {" C ", " " + call + " "}})
        if (const auto at = line.find(mark); at != line.npos)
            line.replace(at, std::strlen(mark), value);
    char text[200];
    std::snprintf(text, sizeof text, line.c_str(), code);
    return text;
}

} // namespace

Expectation expected(const std::string &entry, const std::string &call, std::uint32_t code) {
    if (givesBack(call))
        return {1, ""};
    for (const Row &row : ROWS)
        if ((row.entry == nullptr || entry == row.entry) && holds(row.calls, call) &&
            holds(row.codes, code))
            return {row.result, row.line == nullptr ? "" : filledIn(row.line, entry, call, code)};
    return {0, ""};
}

} // namespace tembra::test
