#include "null_token.h"
#include "platform/skf.h"

#include <cstdio>
#include <cstring>

namespace tembra::bench {

NullToken nullToken;

namespace {

using Clock = std::chrono::steady_clock;

int object; // what every handle points to

ULONG handOver(void **handle) {
    *handle = &object;
    return SAR_OK;
}

// Busy, so that a call takes as long as it says and not a time slice.
ULONG take(std::chrono::nanoseconds time) {
    if (time.count() > 0) {
        const Clock::time_point end = Clock::now() + time;
        while (Clock::now() < end) {
        }
    }
    return SAR_OK;
}

ULONG crypt(const BYTE *in, ULONG length, BYTE *out, ULONG *outLength) {
    (void)in;
    (void)out;
    *outLength = length;
    return take(
        std::chrono::nanoseconds(static_cast<long>(nullToken.cipherNanosecondsPerByte * length)));
}

ULONG oneName(const char *name, char *list, ULONG *size) {
    *size = static_cast<ULONG>(std::snprintf(list, *size, "%s", name)) + 2;
    list[*size - 1] = '\0';
    return SAR_OK;
}

} // namespace
} // namespace tembra::bench

using namespace tembra::bench;

extern "C" {

ULONG SKF_EnumDev(BOOL, LPSTR list, ULONG *size) {
    return oneName("null token", list, size);
}
ULONG SKF_ConnectDev(LPSTR, DEVHANDLE *device) {
    return handOver(device);
}
ULONG SKF_GetDevInfo(DEVHANDLE, DEVINFO *info) {
    std::memset(info, 0, sizeof(*info));
    return SAR_OK;
}
ULONG SKF_EnumApplication(DEVHANDLE, LPSTR list, ULONG *size) {
    return oneName("application", list, size);
}
ULONG SKF_OpenApplication(DEVHANDLE, LPSTR, HAPPLICATION *application) {
    return handOver(application);
}
ULONG SKF_EnumContainer(HAPPLICATION, LPSTR list, ULONG *size) {
    char *end = list;
    for (int i = 0; i < nullToken.containers; ++i)
        end += std::snprintf(end, 16, "container %02d", i) + 1;
    *end++ = '\0';
    *size = static_cast<ULONG>(end - list);
    return SAR_OK;
}
ULONG SKF_OpenContainer(HAPPLICATION, LPSTR, HCONTAINER *container) {
    return handOver(container);
}
ULONG SKF_GetContainerType(HCONTAINER, ULONG *type) {
    *type = CONTAINER_TYPE_ECC;
    return SAR_OK;
}
ULONG SKF_ExportPublicKey(HCONTAINER, BOOL, BYTE *, ULONG *length) {
    *length = sizeof(ECCPUBLICKEYBLOB);
    return SAR_OK;
}
ULONG SKF_ExportCertificate(HCONTAINER, BOOL, BYTE *, ULONG *length) {
    *length = 600;
    return SAR_OK;
}
ULONG SKF_ECCSignData(HCONTAINER, BYTE *, ULONG, ECCSIGNATUREBLOB *) {
    return take(nullToken.signature);
}
ULONG SKF_SetSymmKey(DEVHANDLE, BYTE *, ULONG, HANDLE *key) {
    return handOver(key);
}
ULONG SKF_Encrypt(HANDLE, BYTE *in, ULONG length, BYTE *out, ULONG *outLength) {
    return crypt(in, length, out, outLength);
}
ULONG SKF_Decrypt(HANDLE, BYTE *in, ULONG length, BYTE *out, ULONG *outLength) {
    return crypt(in, length, out, outLength);
}
ULONG SKF_DigestInit(DEVHANDLE, ULONG, ECCPUBLICKEYBLOB *, BYTE *, ULONG, HANDLE *hash) {
    return handOver(hash);
}
ULONG SKF_DigestUpdate(HANDLE, BYTE *, ULONG) {
    return take(nullToken.digestPiece);
}

// The others are there to be found and say that all went well.
#define NULL_CALL(name, ...)                                                                       \
    ULONG name(__VA_ARGS__) {                                                                      \
        return SAR_OK;                                                                             \
    }

NULL_CALL(SKF_DisConnectDev, DEVHANDLE)
NULL_CALL(SKF_LockDev, DEVHANDLE, ULONG)
NULL_CALL(SKF_UnlockDev, DEVHANDLE)
NULL_CALL(SKF_CloseApplication, HAPPLICATION)
NULL_CALL(SKF_ClearSecureState, HAPPLICATION)
NULL_CALL(SKF_CreateContainer, HAPPLICATION, LPSTR, HCONTAINER *)
NULL_CALL(SKF_DeleteContainer, HAPPLICATION, LPSTR)
NULL_CALL(SKF_CloseContainer, HCONTAINER)
NULL_CALL(SKF_ImportCertificate, HCONTAINER, BOOL, BYTE *, ULONG)
NULL_CALL(SKF_GenRSAKeyPair, HCONTAINER, ULONG, RSAPUBLICKEYBLOB *)
NULL_CALL(SKF_GenECCKeyPair, HCONTAINER, ULONG, ECCPUBLICKEYBLOB *)
NULL_CALL(SKF_ImportECCKeyPair, HCONTAINER, ENVELOPEDKEYBLOB *)
NULL_CALL(SKF_ImportRSAKeyPair, HCONTAINER, ULONG, BYTE *, ULONG, BYTE *, ULONG)
NULL_CALL(SKF_RSASignData, HCONTAINER, BYTE *, ULONG, BYTE *, ULONG *)
NULL_CALL(SKF_RSADecrypt, HCONTAINER, BOOL, BYTE *, ULONG, BYTE *, ULONG *)
NULL_CALL(SKF_ECCDecrypt, HCONTAINER, BOOL, ECCCIPHERBLOB *, BYTE *, ULONG *)
NULL_CALL(SKF_VerifyPIN, HAPPLICATION, ULONG, LPSTR, ULONG *)
NULL_CALL(SKF_ChangePIN, HAPPLICATION, ULONG, LPSTR, LPSTR, ULONG *)
NULL_CALL(SKF_UnblockPIN, HAPPLICATION, LPSTR, LPSTR, ULONG *)
NULL_CALL(SKF_GetPINInfo, HAPPLICATION, ULONG, ULONG *, ULONG *, BOOL *)
NULL_CALL(SKF_GenRandom, DEVHANDLE, BYTE *, ULONG)
NULL_CALL(SKF_DevAuth, DEVHANDLE, BYTE *, ULONG)
NULL_CALL(SKF_EncryptInit, HANDLE, BLOCKCIPHERPARAM)
NULL_CALL(SKF_DecryptInit, HANDLE, BLOCKCIPHERPARAM)
NULL_CALL(SKF_DigestFinal, HANDLE, BYTE *, ULONG *)
NULL_CALL(SKF_CloseHandle, HANDLE)
NULL_CALL(SKF_EnumFiles, HAPPLICATION, LPSTR, ULONG *)
NULL_CALL(SKF_CreateFile, HAPPLICATION, LPSTR, ULONG, ULONG, ULONG)
NULL_CALL(SKF_DeleteFile, HAPPLICATION, LPSTR)
NULL_CALL(SKF_GetFileInfo, HAPPLICATION, LPSTR, FILEATTRIBUTE *)
NULL_CALL(SKF_ReadFile, HAPPLICATION, LPSTR, ULONG, ULONG, BYTE *, ULONG *)
NULL_CALL(SKF_WriteFile, HAPPLICATION, LPSTR, ULONG, BYTE *, ULONG)

} // extern "C"
