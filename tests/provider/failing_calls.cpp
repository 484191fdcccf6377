// What the trace says when a library call fails. The results, with every other code, are checked by
// the fault loops, whose scenarios these are.
#include "scripted_test.h"

#include "../faults/scenarios.h"
#include "../support/call_faults.h"

#include <algorithm>

namespace tembra::test {
namespace {

struct FailingCall {
    const char *scenario;
    const char *function;
    int nth; // call of the function
    ULONG code;
    Lines lines; // errors, warnings, and failures at level debug
};

// clang-format off
const FailingCall FAILING_CALLS[] = {
    {"discover", "OrvelPKICryptoEncodeECCPubKey", 1, 0, {"[WARN] [GetECCPublicKey] OrvelPKICryptoEncodeECCPubKey fail, error = 0"}},
    {"discover", "OrvelPKICryptoEncodeRSAPubKey", 1, 0, {"[ERROR] [GetRSAPublicKey] OrvelPKICryptoEncodeRSAPubKey fail, error : 0"}},
    {"discover", "SKF_ClearSecureState", 1, SAR_FAIL, {}},
    {"discover", "SKF_ConnectDev", 1, SAR_FAIL, {"[ERROR] [addDevice] SKF_ConnectDev fail, error = 0x0A000001"}},
    {"discover", "SKF_EnumApplication", 1, SAR_FAIL, {"[ERROR] [addDevice] appNameLen == 0 || appNameList[0] == 0"}},
    {"discover", "SKF_EnumContainer", 1, SAR_FAIL, {"[ERROR] [getAllContainer] SKF_EnumContainer fail, error = 0x0A000001", "[ERROR] [createKeyHandle] getAllContainer(hDevice) == 0"}},
    {"discover", "SKF_EnumDev", 1, SAR_FAIL, {"[ERROR] [DeviceGetAllDevices] SKF_EnumDev fail, error : 0x0A000001"}},
    {"discover", "SKF_ExportCertificate", 1, SAR_FAIL, {"[ERROR] [GetCertificate] SKF_ExportCertificate fail, error = 0x0A000001"}},
    {"discover", "SKF_ExportPublicKey", 1, SAR_FAIL, {"[ERROR] [GetECCPublicKey] SKF_ExportPublicKey fail, error = 0x0A000001"}},
    {"discover", "SKF_ExportPublicKey", 3, SAR_FAIL, {"[ERROR] [GetRSAPublicKey] SKF_ExportPublicKey fail, error = 0x0A000001"}},
    {"discover", "SKF_GetContainerType", 1, SAR_FAIL, {"[ERROR] [getContainer] SKF_GetContainerType fail, error = 0x0A000001"}},
    {"discover", "SKF_GetDevInfo", 1, SAR_FAIL, {"[ERROR] [addDevice] SKF_GetDevInfo fail, error = 0x0A000001"}},
    {"discover", "SKF_LockDev", 1, SAR_FAIL, {"[ERROR] [addDevice] SKF_LockDev fail, error = 0x0A000001"}},
    {"discover", "SKF_OpenApplication", 1, SAR_FAIL, {}},
    {"discover", "SKF_OpenContainer", 1, SAR_FAIL, {"[ERROR] [getContainer] SKF_OpenContainer fail, error = 0x0A000001"}},
    {"sign and decrypt", "SKF_ECCDecrypt", 1, SAR_FAIL, {"[ERROR] [DevicePrivateKeyDecrypt] SKF_ECCPrvKeyDecrypt fail, error = 0x0a000001"}},
    {"sign and decrypt", "SKF_ECCDecrypt", 1, SAR_USER_NOT_LOGGED_IN, {}},
    {"sign and decrypt", "SKF_RSADecrypt", 1, SAR_FAIL, {"[ERROR] [DevicePrivateKeyDecrypt] SKF_RSADecrypt fail, error = 0x0a000001"}},
    {"sign and decrypt", "SKF_RSADecrypt", 1, SAR_USER_NOT_LOGGED_IN, {}},
    {"sign and decrypt", "OrvelPKICryptoEncodeECCSignature", 1, 0, {"[ERROR] [DeviceSign] OrvelPKICryptoEncodeECCSignature fail, error = 0"}},
    {"sign and decrypt", "SKF_ECCSignData", 1, SAR_FAIL, {"[ERROR] [DeviceSign] SKF_ECCSignData fail, error = 0x0A000001"}},
    {"sign and decrypt", "SKF_ECCSignData", 1, SAR_USER_NOT_LOGGED_IN, {"[ERROR] [DeviceSign]  SKF_ECCSignData fail, rv == SAR_USER_NOT_LOGGED_IN || rv == 0x000000b3"}},
    {"sign and decrypt", "SKF_RSASignData", 1, SAR_FAIL, {"[ERROR] [DeviceSign] SKF_RSASignData fail, error = 0x0A000001"}},
    {"sign and decrypt", "SKF_RSASignData", 1, SAR_USER_NOT_LOGGED_IN, {"[ERROR] [DeviceSign] SKF_RSASignData fail,rv= SAR_USER_NOT_LOGGED_IN"}},
    {"generate", "OrvelPKICryptoEncodeECCPubKey", 3, 0, {"[WARN] [GenerateKeypair] OrvelPKICryptoEncodeECCPubKey fail, error = 0"}},
    {"generate", "OrvelPKICryptoEncodeRSAPubKey", 3, 0, {"[WARN] [GenerateKeypair] OrvelPKICryptoEncodeRSAPubKey fail, error = 0"}},
    {"generate", "SKF_CreateContainer", 1, SAR_FAIL, {"[ERROR] [createContainer] SKF_CreateContainer fail, error = 0x0A000001"}},
    {"generate", "SKF_CreateContainer", 1, SAR_USER_NOT_LOGGED_IN, {"[WARN] [createContainer] rv == SAR_USER_NOT_LOGGED_IN || rv == 0x000000b3"}},
    {"generate", "SKF_GenECCKeyPair", 1, SAR_FAIL, {"[DEBUG] [GenerateKeypair] SKF_GenECCKeyPair fail, error = 0x0A000001"}},
    {"generate", "SKF_GenECCKeyPair", 1, SAR_USER_NOT_LOGGED_IN, {}},
    {"generate", "SKF_GenRSAKeyPair", 1, SAR_FAIL, {"[DEBUG] [GenerateKeypair] SKF_GenRSAKeyPair fail, error = 0x0A000001"}},
    {"generate", "SKF_GenRSAKeyPair", 1, SAR_USER_NOT_LOGGED_IN, {}},
    {"delete", "SKF_DeleteContainer", 1, SAR_FAIL, {"[ERROR] [DeviceDeleteKeypair] SKF_DeleteContainer fail, error = 0x0a000001"}},
    {"delete", "SKF_DeleteContainer", 1, SAR_USER_NOT_LOGGED_IN, {"[ERROR] [DeviceDeleteKeypair] SKF_DeleteContainer fail, error = 0x0a00002d"}},
    {"update certificates", "SKF_ImportCertificate", 1, SAR_FAIL, {"[ERROR] [DeviceUpdateCertificate] SKF_ImportCertificate fail, error = 0x0A000001"}},
    {"update certificates", "SKF_ImportCertificate", 1, SAR_USER_NOT_LOGGED_IN, {"[WARN] [DeviceUpdateCertificate] rv == SAR_USER_NOT_LOGGED_IN"}},
    {"import enveloped", "OrvelPKICryptoDecodeECCPubKey", 1, 0, {"[ERROR] [importSM2KeyPair] OrvelPKICryptoDecodeECCPubKey fail, error = 0"}},
    {"import enveloped", "OrvelPKICryptoDecodeRSAPubKey", 1, 0, {"[ERROR] [importRSAKeyPair] OrvelPKICryptoDecodeRSAPubKey fail, error = 0"}},
    {"import enveloped", "OrvelPKICryptoEncodeECCPubKey", 3, 0, {"[WARN] [GetECCPublicKey] OrvelPKICryptoEncodeECCPubKey fail, error = 0", "[ERROR] [importSM2KeyPair] GetECCPublicKey fail, error = 0"}},
    {"import enveloped", "OrvelPKICryptoEncodeRSAPubKey", 3, 0, {"[ERROR] [GetRSAPublicKey] OrvelPKICryptoEncodeRSAPubKey fail, error : 0", "[ERROR] [importRSAKeyPair] GetRSAPublicKey fail"}},
    {"import enveloped", "SKF_ExportPublicKey", 5, SAR_FAIL, {"[ERROR] [GetECCPublicKey] SKF_ExportPublicKey fail, error = 0x0A000001", "[ERROR] [importSM2KeyPair] GetECCPublicKey fail, error = 0"}},
    {"import enveloped", "SKF_ExportPublicKey", 6, SAR_FAIL, {"[ERROR] [GetRSAPublicKey] SKF_ExportPublicKey fail, error = 0x0A000001", "[ERROR] [importRSAKeyPair] GetRSAPublicKey fail"}},
    {"import enveloped", "SKF_ImportECCKeyPair", 1, SAR_FAIL, {"[ERROR] [importSM2KeyPair] SKF_ImportECCKeyPair fail, error = 0x0A000001"}},
    {"import enveloped", "SKF_ImportECCKeyPair", 1, SAR_USER_NOT_LOGGED_IN, {}},
    {"import enveloped", "SKF_ImportRSAKeyPair", 1, SAR_FAIL, {"[ERROR] [importRSAKeyPair] SKF_ImportRSAKeyPair fail, error = 0x0A000001"}},
    {"import enveloped", "SKF_ImportRSAKeyPair", 1, SAR_USER_NOT_LOGGED_IN, {}},
    {"import plain", "OrvelPKICryptoRSAPrivKeyToDER", 1, 0, {"[ERROR] [DeviceImportKeypair] EncKeyPairBlob()==0"}},
    {"import plain", "SKF_SetSymmKey", 1, SAR_FAIL, {"[ERROR] [DeviceImportKeypair] EncKeyPairBlob()==0"}},
    {"import plain", "SKF_SetSymmKey", 2, SAR_FAIL, {"[ERROR] [DeviceImportKeypair] EncKeyPairBlob()==0"}},
    {"import plain", "SKF_Encrypt", 1, SAR_FAIL, {"[ERROR] [DeviceImportKeypair] EncKeyPairBlob()==0"}},
    {"PINs", "SKF_ChangePIN", 1, SAR_FAIL, {"[ERROR] [DeviceChangePwd] SKF_ChangePIN fail, error = 0x0A000001"}},
    {"PINs", "SKF_ChangePIN", 1, SAR_PIN_INCORRECT, {}},
    {"PINs", "SKF_ChangePIN", 1, SAR_PIN_LEN_RANGE, {}},
    {"PINs", "SKF_GetPINInfo", 1, SAR_FAIL, {"[ERROR] [DeviceGetPwdRetryNum] SKF_GetPINInfo fail, error : 0x0A000001"}},
    {"PINs", "SKF_UnblockPIN", 1, SAR_FAIL, {"[ERROR] [DeviceUnlockPwd] rv != SAR_OK, rv = 0x0A000001"}},
    {"PINs", "SKF_UnblockPIN", 1, SAR_PIN_LOCKED, {}},
    {"PINs", "SKF_UnblockPIN", 1, SAR_PIN_LEN_RANGE, {}},
    {"PINs", "SKF_DevAuth", 1, SAR_FAIL, {"[ERROR] [ExternalAuth] SKF_DevAuth fail, error = 0x0A000001"}},
    {"PINs", "SKF_Encrypt", 1, SAR_FAIL, {"[ERROR] [ExternalAuth] SKF_Encrypt fail, error = 0x0A000001"}},
    {"PINs", "SKF_EncryptInit", 1, SAR_FAIL, {"[ERROR] [ExternalAuth] SKF_EncryptInit fail, error = 0x0A000001"}},
    {"PINs", "SKF_GenRandom", 1, SAR_FAIL, {"[ERROR] [ExternalAuth] SKF_GenRandom fail, error = 0x0A000001"}},
    {"PINs", "SKF_SetSymmKey", 1, SAR_FAIL, {"[ERROR] [ExternalAuth] SKF_SetSymmKey fail, error = 0x0A000001"}},
    {"PINs", "SKF_VerifyPIN", 1, SAR_FAIL, {"[ERROR] [DeviceVerifyPwd] SKF_VerifyPIN fail, error = 0x0A000001"}},
    {"PINs", "SKF_VerifyPIN", 1, SAR_PIN_INCORRECT, {}},
    {"PINs", "SKF_VerifyPIN", 1, SAR_PIN_LEN_RANGE, {}},
    {"hash and encipher", "SKF_Decrypt", 1, SAR_FAIL, {"[ERROR] [cipherUpdate] SKF_Decrypt fail, error = 0x0A000001"}},
    {"hash and encipher", "SKF_DecryptInit", 1, SAR_FAIL, {}},
    {"hash and encipher", "SKF_Encrypt", 1, SAR_FAIL, {"[ERROR] [cipherUpdate] SKF_Encrypt fail, error = 0x0A000001"}},
    {"hash and encipher", "SKF_EncryptInit", 1, SAR_FAIL, {"[ERROR] [cipherUpdate] SKF_EncryptInit fail, error = 0x0A000001"}},
    {"hash and encipher", "SKF_GenRandom", 1, SAR_FAIL, {"[ERROR] [DeviceGenerateRandom] SKF_GenRandom fail, error = 0x0A000001"}},
    {"hash and encipher", "SKF_DigestFinal", 1, SAR_FAIL, {"[ERROR] [DeviceHashFinal] SKF_DigestFinal fail, error = 0x0A000001"}},
    {"hash and encipher", "SKF_DigestUpdate", 1, SAR_FAIL, {"[ERROR] [DeviceHashUpdate] SKF_DigestUpdate fail, error = 0x0A000001"}},
    {"hash and encipher", "SKF_SetSymmKey", 1, SAR_FAIL, {}},
    {"hash and encipher", "SKF_DigestInit", 1, SAR_FAIL, {}},
    {"data objects", "SKF_CreateFile", 1, SAR_FAIL, {"[ERROR] [DeviceCreateData] SKF_CreateFile fail, error = 0x0a000001"}},
    {"data objects", "SKF_GetFileInfo", 1, SAR_FAIL, {"[ERROR] [DeviceWriteDataEx] SKF_GetFileInfo fail, error = 0x0a000001"}},
    {"data objects", "SKF_WriteFile", 1, SAR_FAIL, {"[ERROR] [DeviceWriteDataEx] SKF_WriteFile fail, error = 0x0a000001"}},
    {"data objects", "SKF_GetFileInfo", 2, SAR_FAIL, {"[ERROR] [DeviceReadDataEx] SKF_GetFileInfo fail, error = 0x0a000001"}},
    {"data objects", "SKF_ReadFile", 1, SAR_FAIL, {"[ERROR] [DeviceReadDataEx] SKF_ReadFile fail, error = 0x0a000001"}},
    {"data objects", "SKF_DeleteFile", 1, SAR_FAIL, {"[ERROR] [DeviceDeleteData] SKF_DeleteFile fail, error = 0x0a000001"}},
    {"data objects", "SKF_WriteFile", 1, SAR_USER_NOT_LOGGED_IN, {}},
};
// clang-format on

Lines failureLines() {
    Lines texts;
    for (const TraceLine &line : trace().lines())
        if (line.level == "ERROR" || line.level == "WARN" ||
            (line.level == "DEBUG" && line.message.find(" fail, ") != line.message.npos))
            texts.push_back(line.text());
    return texts;
}

class FailingCalls : public ScriptedTest {};

TEST_F(FailingCalls, LeaveTheirLines) {
    const KeptByContract keptByContract;
    keepsHandlesOpen();
    for (const FailingCall &call : FAILING_CALLS) {
        SCOPED_TRACE(std::string(call.scenario) + ", " + call.function + " " +
                     std::to_string(call.nth) + ", code " + std::to_string(call.code));
        resetScript();
        const auto scenario = std::ranges::find(scenarios(), std::string_view(call.scenario),
                                                [](const Scenario &one) { return one.name; });
        (scenario == scenarios().end() ? scenarios().front() : *scenario).insert();
        trace().setLevel("4");
        mark();
        planAnswer(call.function, call.nth, call.code);
        Session session;
        try {
            if (scenario == scenarios().end())
                session.set = DeviceGetAllDevices();
            else
                scenario->run(session);
        } catch (const Session::Ended &) {
        }
        EXPECT_EQ(failureLines(), call.lines);
    }
}

} // namespace
} // namespace tembra::test
