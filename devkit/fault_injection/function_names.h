// Every function that goes through the door, of both libraries: what a fault plan may name, and
// where the counters are kept.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace tembra::door {

// In the order of the bytes, for the search below.
constexpr std::array<std::string_view, 62> FUNCTION_NAMES = {
    "OrvelPKICryptoDecodeECCKeyPair",
    "OrvelPKICryptoDecodeECCPubKey",
    "OrvelPKICryptoDecodeRSAPubKey",
    "OrvelPKICryptoEncodeECCPubKey",
    "OrvelPKICryptoEncodeECCSignature",
    "OrvelPKICryptoEncodeRSAPubKey",
    "OrvelPKICryptoFreeDevice",
    "OrvelPKICryptoFreeMemory",
    "OrvelPKICryptoFreePublicKey",
    "OrvelPKICryptoGenerateRandom",
    "OrvelPKICryptoGetPseudoDevice",
    "OrvelPKICryptoImportPublicKey",
    "OrvelPKICryptoPublicKeyEncrypt",
    "OrvelPKICryptoRSAPrivKeyToDER",
    "SKF_ChangePIN",
    "SKF_ClearSecureState",
    "SKF_CloseApplication",
    "SKF_CloseContainer",
    "SKF_CloseHandle",
    "SKF_ConnectDev",
    "SKF_CreateContainer",
    "SKF_CreateFile",
    "SKF_Decrypt",
    "SKF_DecryptInit",
    "SKF_DeleteContainer",
    "SKF_DeleteFile",
    "SKF_DevAuth",
    "SKF_DigestFinal",
    "SKF_DigestInit",
    "SKF_DigestUpdate",
    "SKF_DisConnectDev",
    "SKF_ECCDecrypt",
    "SKF_ECCSignData",
    "SKF_Encrypt",
    "SKF_EncryptInit",
    "SKF_EnumApplication",
    "SKF_EnumContainer",
    "SKF_EnumDev",
    "SKF_EnumFiles",
    "SKF_ExportCertificate",
    "SKF_ExportPublicKey",
    "SKF_GenECCKeyPair",
    "SKF_GenRSAKeyPair",
    "SKF_GenRandom",
    "SKF_GetContainerType",
    "SKF_GetDevInfo",
    "SKF_GetFileInfo",
    "SKF_GetPINInfo",
    "SKF_ImportCertificate",
    "SKF_ImportECCKeyPair",
    "SKF_ImportRSAKeyPair",
    "SKF_LockDev",
    "SKF_OpenApplication",
    "SKF_OpenContainer",
    "SKF_RSADecrypt",
    "SKF_RSASignData",
    "SKF_ReadFile",
    "SKF_SetSymmKey",
    "SKF_UnblockPIN",
    "SKF_UnlockDev",
    "SKF_VerifyPIN",
    "SKF_WriteFile",
};

// The place of a name in the table, or its size.
constexpr std::size_t functionIndex(std::string_view name) {
    std::size_t low = 0;
    std::size_t high = FUNCTION_NAMES.size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (FUNCTION_NAMES[middle] < name)
            low = middle + 1;
        else
            high = middle;
    }
    const bool found = low < FUNCTION_NAMES.size() && FUNCTION_NAMES[low] == name;
    return found ? low : FUNCTION_NAMES.size();
}

} // namespace tembra::door
