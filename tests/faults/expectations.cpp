#include "expectations.h"

#include "../support/scripted_function.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace tembra::test {
namespace {

struct Row {
    const char *entry;
    const char *call;
    std::vector<std::uint32_t> codes; // none: all
    int result;
    const char *line; // a printf format for the code, or null
};

// The first row that fits counts. A failure that is in no row answers 0 and writes nothing: those
// of DeviceNewHash and DeviceNewCipher, for instance.
// clang-format off
const Row rows[] = {
    {"DeviceInit", "OrvelPKICryptoGetPseudoDevice", {}, 0, "[ERROR] [DeviceInit] OrvelPKICryptoGetPseudoDevice fail"},
    {"DeviceGetAllDevices", "SKF_EnumDev", {}, 1, "[ERROR] [DeviceGetAllDevices] SKF_EnumDev fail, error : 0x%08X"},
    {"DeviceGetAllDevices", "SKF_ConnectDev", {}, 1, "[ERROR] [addDevice] SKF_ConnectDev fail, error = 0x%08X"},
    {"DeviceGetAllDevices", "SKF_LockDev", {}, 1, "[ERROR] [addDevice] SKF_LockDev fail, error = 0x%08X"},
    {"DeviceGetAllDevices", "SKF_GetDevInfo", {}, 1, "[ERROR] [addDevice] SKF_GetDevInfo fail, error = 0x%08X"},
    {"DeviceGetAllDevices", "SKF_EnumApplication", {}, 1, "[ERROR] [addDevice] appNameLen == 0 || appNameList[0] == 0"},
    {"DeviceGetAllDevices", "SKF_EnumContainer", {}, 1, "[ERROR] [getAllContainer] SKF_EnumContainer fail, error = 0x%08X"},
    {"DeviceGetAllDevices", "SKF_OpenContainer", {}, 1, "[ERROR] [getContainer] SKF_OpenContainer fail, error = 0x%08X"},
    {"DeviceGetAllDevices", "SKF_GetContainerType", {}, 1, "[ERROR] [getContainer] SKF_GetContainerType fail, error = 0x%08X"},
    {"DeviceGetAllDevices", "SKF_ExportPublicKey", {}, 1, "PublicKey] SKF_ExportPublicKey fail, error = 0x%08X"},
    {"DeviceGetAllDevices", "SKF_ExportCertificate", {}, 1, "[ERROR] [GetCertificate] SKF_ExportCertificate fail, error = 0x%08X"},
    {"DeviceGetAllDevices", "OrvelPKICryptoEncodeRSAPubKey", {}, 1, "[ERROR] [GetRSAPublicKey] OrvelPKICryptoEncodeRSAPubKey fail, error : %d"},
    {"DeviceGetAllDevices", "OrvelPKICryptoEncodeECCPubKey", {}, 1, "[WARN] [GetECCPublicKey] OrvelPKICryptoEncodeECCPubKey fail, error = %d"},
    {"DeviceGetAllDevices", nullptr, {}, 1, nullptr}, // applications are skipped silently
    {"DeviceGenerateKeypair", "SKF_CreateContainer", {0x0A00002D, 0xB3}, -8, "[WARN] [createContainer] rv == SAR_USER_NOT_LOGGED_IN || rv == 0x000000b3"},
    {"DeviceGenerateKeypair", "SKF_CreateContainer", {}, 0, "[ERROR] [createContainer] SKF_CreateContainer fail, error = 0x%08X"},
    {"DeviceGenerateKeypair", "SKF_GenRSAKeyPair", {0x0A00002D}, -8, nullptr},
    {"DeviceGenerateKeypair", "SKF_GenECCKeyPair", {0x0A00002D}, -8, nullptr},
    {"DeviceGenerateKeypair", "SKF_GenRSAKeyPair", {}, 0, "[DEBUG] [GenerateKeypair] SKF_GenRSAKeyPair fail, error = 0x%08X"},
    {"DeviceGenerateKeypair", "SKF_GenECCKeyPair", {}, 0, "[DEBUG] [GenerateKeypair] SKF_GenECCKeyPair fail, error = 0x%08X"},
    {"DeviceGenerateKeypair", "OrvelPKICryptoEncodeRSAPubKey", {}, 0, "[WARN] [GenerateKeypair] OrvelPKICryptoEncodeRSAPubKey fail, error = 0"},
    {"DeviceGenerateKeypair", "OrvelPKICryptoEncodeECCPubKey", {}, 0, "[WARN] [GenerateKeypair] OrvelPKICryptoEncodeECCPubKey fail, error = %d"},
    {"DeviceDeleteKeypair", "SKF_DeleteContainer", {0x0A00002D}, -8, "[ERROR] [DeviceDeleteKeypair] SKF_DeleteContainer fail, error = 0x0a00002d"},
    {"DeviceDeleteKeypair", "SKF_DeleteContainer", {}, 1, "[ERROR] [DeviceDeleteKeypair] SKF_DeleteContainer fail, error = 0x%08x"},
    {"DeviceUpdateCertificate", "SKF_ImportCertificate", {0x0A00002D}, -8, "[WARN] [DeviceUpdateCertificate] rv == SAR_USER_NOT_LOGGED_IN"},
    {"DeviceUpdateCertificate", "SKF_ImportCertificate", {}, 0, "[ERROR] [DeviceUpdateCertificate] SKF_ImportCertificate fail, error = 0x%08X"},
    {"DeviceSign", "SKF_RSASignData", {0x0A00002D}, -8, "[ERROR] [DeviceSign] SKF_RSASignData fail,rv= SAR_USER_NOT_LOGGED_IN"},
    {"DeviceSign", "SKF_RSASignData", {}, 0, "[ERROR] [DeviceSign] SKF_RSASignData fail, error = 0x%08X"},
    {"DeviceSign", "SKF_ECCSignData", {0x0A00002D, 0xB3}, -8, "[ERROR] [DeviceSign]  SKF_ECCSignData fail, rv == SAR_USER_NOT_LOGGED_IN || rv == 0x000000b3"},
    {"DeviceSign", "SKF_ECCSignData", {}, 0, "[ERROR] [DeviceSign] SKF_ECCSignData fail, error = 0x%08X"},
    {"DeviceSign", "OrvelPKICryptoEncodeECCSignature", {}, 0, "[ERROR] [DeviceSign] OrvelPKICryptoEncodeECCSignature fail, error = %d"},
    {"DevicePrivateKeyDecrypt", "SKF_ECCDecrypt", {0x0A00002D}, -8, nullptr},
    {"DevicePrivateKeyDecrypt", "SKF_ECCDecrypt", {}, 0, "[ERROR] [DevicePrivateKeyDecrypt] SKF_ECCPrvKeyDecrypt fail, error = 0x%08x"},
    {"DevicePrivateKeyDecrypt", "SKF_RSADecrypt", {0x0A00002D, 3}, -8, nullptr},
    {"DevicePrivateKeyDecrypt", "SKF_RSADecrypt", {}, 0, "[ERROR] [DevicePrivateKeyDecrypt] SKF_RSADecrypt fail, error = 0x%08x"},
    {"DeviceImportKeypair", "OrvelPKICryptoDecodeECCPubKey", {}, 0, "[ERROR] [importSM2KeyPair] OrvelPKICryptoDecodeECCPubKey fail, error = %d"},
    {"DeviceImportKeypair", "OrvelPKICryptoDecodeRSAPubKey", {}, 0, "[ERROR] [importRSAKeyPair] OrvelPKICryptoDecodeRSAPubKey fail, error = %d"},
    {"DeviceImportKeypair", "SKF_ImportECCKeyPair", {0x0A00000D, 0x0A00001E, 0x0A00002D, 0x0B000033, 1}, -8, nullptr},
    {"DeviceImportKeypair", "SKF_ImportECCKeyPair", {}, 0, "[ERROR] [importSM2KeyPair] SKF_ImportECCKeyPair fail, error = 0x%08X"},
    {"DeviceImportKeypair", "SKF_ImportRSAKeyPair", {0x0A00000D, 0x0A00002D}, -8, nullptr},
    {"DeviceImportKeypair", "SKF_ImportRSAKeyPair", {}, 0, "[ERROR] [importRSAKeyPair] SKF_ImportRSAKeyPair fail, error = 0x%08X"},
    {"DeviceImportKeypair", "SKF_ExportPublicKey", {}, 0, "PublicKey] SKF_ExportPublicKey fail, error = 0x%08X"},
    {"DeviceImportKeypair", "OrvelPKICryptoEncodeECCPubKey", {}, 0, "[ERROR] [importSM2KeyPair] GetECCPublicKey fail, error = 0"},
    {"DeviceImportKeypair", "OrvelPKICryptoEncodeRSAPubKey", {}, 0, "[ERROR] [importRSAKeyPair] GetRSAPublicKey fail"},
    {"enveloping", nullptr, {}, 0, "[ERROR] [DeviceImportKeypair] EncKeyPairBlob()==0"},
    {"DeviceVerifyPwd", "SKF_VerifyPIN", {0x0A000024}, -5, nullptr},
    {"DeviceVerifyPwd", "SKF_VerifyPIN", {0x0A000027}, -19, nullptr},
    {"DeviceVerifyPwd", "SKF_VerifyPIN", {}, 0, "[ERROR] [DeviceVerifyPwd] SKF_VerifyPIN fail, error = 0x%08X"},
    {"DeviceVerifyPwd", "SKF_GenRandom", {}, 0, "[ERROR] [ExternalAuth] SKF_GenRandom fail, error = 0x%08X"},
    {"DeviceVerifyPwd", "SKF_SetSymmKey", {}, 0, "[ERROR] [ExternalAuth] SKF_SetSymmKey fail, error = 0x%08X"},
    {"DeviceVerifyPwd", "SKF_EncryptInit", {}, 0, "[ERROR] [ExternalAuth] SKF_EncryptInit fail, error = 0x%08X"},
    {"DeviceVerifyPwd", "SKF_Encrypt", {}, 0, "[ERROR] [ExternalAuth] SKF_Encrypt fail, error = 0x%08X"},
    {"DeviceVerifyPwd", "SKF_DevAuth", {}, -5, "[ERROR] [ExternalAuth] SKF_DevAuth fail, error = 0x%08X"},
    {"DeviceChangePwd", "SKF_ChangePIN", {0x0A000024}, -5, nullptr},
    {"DeviceChangePwd", "SKF_ChangePIN", {0x0A000027}, -19, nullptr},
    {"DeviceChangePwd", "SKF_ChangePIN", {}, 0, "[ERROR] [DeviceChangePwd] SKF_ChangePIN fail, error = 0x%08X"},
    {"DeviceUnlockPwd", "SKF_UnblockPIN", {0x0A000025}, -5, nullptr},
    {"DeviceUnlockPwd", "SKF_UnblockPIN", {0x0A000027}, -19, nullptr},
    {"DeviceUnlockPwd", "SKF_UnblockPIN", {}, 0, "[ERROR] [DeviceUnlockPwd] rv != SAR_OK, rv = 0x%08X"},
    {"DeviceGetPwdRetryNum", "SKF_GetPINInfo", {}, 0, "[ERROR] [DeviceGetPwdRetryNum] SKF_GetPINInfo fail, error : 0x%08X"},
    {"DeviceGenerateRandom", "SKF_GenRandom", {}, 0, "[ERROR] [DeviceGenerateRandom] SKF_GenRandom fail, error = 0x%08X"},
    {"DeviceHashUpdate", "SKF_DigestUpdate", {}, 0, "[ERROR] [DeviceHashUpdate] SKF_DigestUpdate fail, error = 0x%08X"},
    {"DeviceHashFinal", "SKF_DigestFinal", {}, 0, "[ERROR] [DeviceHashFinal] SKF_DigestFinal fail, error = 0x%08X"},
    {"DeviceCipherUpdate", "SKF_EncryptInit", {}, 0, "[ERROR] [cipherUpdate] SKF_EncryptInit fail, error = 0x%08X"},
    {"DeviceCipherUpdate", "SKF_Encrypt", {}, 0, "[ERROR] [cipherUpdate] SKF_Encrypt fail, error = 0x%08X"},
    {"DeviceCipherUpdate", "SKF_Decrypt", {}, 0, "[ERROR] [cipherUpdate] SKF_Decrypt fail, error = 0x%08X"},
    {"DeviceCreateData", "SKF_EnumFiles", {}, 1, nullptr}, // counts as not there
    {"DeviceCreateData", "SKF_CreateFile", {0x0A00002D}, -8, nullptr},
    {"DeviceCreateData", "SKF_CreateFile", {}, 0, "[ERROR] [DeviceCreateData] SKF_CreateFile fail, error = 0x%08x"},
    {"DeviceReadDataEx", "SKF_ReadFile", {0x0A00002D}, -8, nullptr},
    {"DeviceReadDataEx", "SKF_ReadFile", {}, 0, "[ERROR] [DeviceReadDataEx] SKF_ReadFile fail, error = 0x%08x"},
    {"DeviceReadDataEx", "SKF_GetFileInfo", {}, 0, "[ERROR] [DeviceReadDataEx] SKF_GetFileInfo fail, error = 0x%08x"},
    {"DeviceWriteDataEx", "SKF_WriteFile", {0x0A00002D}, -8, nullptr},
    {"DeviceWriteDataEx", "SKF_WriteFile", {}, 0, "[ERROR] [DeviceWriteDataEx] SKF_WriteFile fail, error = 0x%08x"},
    {"DeviceWriteDataEx", "SKF_GetFileInfo", {}, 0, "[ERROR] [DeviceWriteDataEx] SKF_GetFileInfo fail, error = 0x%08x"},
    {"DeviceDeleteData", "SKF_DeleteFile", {0x0A00002D}, -8, nullptr},
    {"DeviceDeleteData", "SKF_DeleteFile", {}, 0, "[ERROR] [DeviceDeleteData] SKF_DeleteFile fail, error = 0x%08x"},
    {nullptr, "SKF_EnumFiles", {}, -7, nullptr},
};
// clang-format on

bool fits(const Row &row, const std::string &entry, const std::string &call, std::uint32_t code) {
    return (row.entry == nullptr || entry == row.entry) &&
           (row.call == nullptr || call == row.call) &&
           (row.codes.empty() ||
            std::find(row.codes.begin(), row.codes.end(), code) != row.codes.end());
}

} // namespace

Expectation expected(const std::string &entry, const std::string &call, std::uint32_t code) {
    if (givesBack(call))
        return {1, ""};
    for (const Row &row : rows) {
        if (fits(row, entry, call, code)) {
            char line[200] = "";
            if (row.line != nullptr)
                std::snprintf(line, sizeof line, row.line, code);
            return {row.result, line};
        }
    }
    return {0, ""};
}

} // namespace tembra::test
