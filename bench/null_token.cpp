#include "null_token.h"

#include "platform/orvel_crypto.h"
#include "platform/skf.h"

#include <cstdio>
#include <cstring>

namespace tembra::bench {

NullToken nullToken;

namespace {

using Clock = std::chrono::steady_clock;
using Bytes = const unsigned char *;

unsigned char object[128]; // what every handle and buffer points to

ULONG handOver(void **handle) {
    *handle = &object;
    return SAR_OK;
}

int handOver(unsigned char **out, int *length, int size) {
    *out = object;
    *length = size;
    return 1;
}

ULONG put(ULONG *out, std::size_t number) {
    *out = static_cast<ULONG>(number);
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

ULONG oneName(const char *name, char *list, ULONG *size) {
    const int length = std::snprintf(list, *size, "%s", name);
    list[length + 1] = '\0';
    return put(size, static_cast<std::size_t>(length) + 2);
}

ULONG containers(char *list, ULONG *size) {
    char *end = list;
    for (int i = 0; i < nullToken.containers; ++i)
        end += std::snprintf(end, 16, "container %02d", i) + 1;
    *end++ = '\0';
    return put(size, static_cast<std::size_t>(end - list));
}

ULONG crypt(ULONG length, ULONG *outLength) {
    put(outLength, length);
    return take(
        std::chrono::nanoseconds(static_cast<long>(nullToken.cipherNanosecondsPerByte * length)));
}

} // namespace

// An exported function and what it answers.
#define ANSWER(type, name, parameters, answer)                                                     \
    type name parameters {                                                                         \
        return answer;                                                                             \
    }

extern "C" {

ANSWER(ULONG, SKF_EnumDev, (BOOL, LPSTR list, ULONG *size), oneName("null token", list, size))
ANSWER(ULONG, SKF_ConnectDev, (LPSTR, DEVHANDLE *device), handOver(device))
ANSWER(ULONG, SKF_DisConnectDev, (DEVHANDLE), SAR_OK)
ANSWER(ULONG, SKF_LockDev, (DEVHANDLE, ULONG), SAR_OK)
ANSWER(ULONG, SKF_UnlockDev, (DEVHANDLE), SAR_OK)
ANSWER(ULONG, SKF_GetDevInfo, (DEVHANDLE, DEVINFO *info), (*info = {}, SAR_OK))
ANSWER(ULONG, SKF_GenRandom, (DEVHANDLE, BYTE *, ULONG), SAR_OK)
ANSWER(ULONG, SKF_EnumApplication, (DEVHANDLE, LPSTR list, ULONG *size),
       oneName("application", list, size))
ANSWER(ULONG, SKF_OpenApplication, (DEVHANDLE, LPSTR, HAPPLICATION *opened), handOver(opened))
ANSWER(ULONG, SKF_CloseApplication, (HAPPLICATION), SAR_OK)
ANSWER(ULONG, SKF_ClearSecureState, (HAPPLICATION), SAR_OK)
ANSWER(ULONG, SKF_EnumContainer, (HAPPLICATION, LPSTR list, ULONG *size), containers(list, size))
ANSWER(ULONG, SKF_OpenContainer, (HAPPLICATION, LPSTR, HCONTAINER *opened), handOver(opened))
ANSWER(ULONG, SKF_CloseContainer, (HCONTAINER), SAR_OK)
ANSWER(ULONG, SKF_GetContainerType, (HCONTAINER, ULONG *type), put(type, CONTAINER_TYPE_ECC))
ANSWER(ULONG, SKF_ExportPublicKey, (HCONTAINER, BOOL, BYTE *, ULONG *length),
       put(length, sizeof(ECCPUBLICKEYBLOB)))
ANSWER(ULONG, SKF_ExportCertificate, (HCONTAINER, BOOL, BYTE *, ULONG *length), put(length, 600))
ANSWER(ULONG, SKF_ECCSignData, (HCONTAINER, BYTE *, ULONG, ECCSIGNATUREBLOB *),
       take(nullToken.signature))
ANSWER(ULONG, SKF_SetSymmKey, (DEVHANDLE, BYTE *, ULONG, HANDLE *key), handOver(key))
ANSWER(ULONG, SKF_EncryptInit, (HANDLE, BLOCKCIPHERPARAM), SAR_OK)
ANSWER(ULONG, SKF_Encrypt, (HANDLE, BYTE *, ULONG length, BYTE *, ULONG *outLength),
       crypt(length, outLength))
ANSWER(ULONG, SKF_DigestInit, (DEVHANDLE, ULONG, ECCPUBLICKEYBLOB *, BYTE *, ULONG, HANDLE *hash),
       handOver(hash))
ANSWER(ULONG, SKF_DigestUpdate, (HANDLE, BYTE *, ULONG), take(nullToken.digestPiece))
ANSWER(ULONG, SKF_CloseHandle, (HANDLE), SAR_OK)

ANSWER(void *, OrvelPKICryptoGetPseudoDevice, (void), object)
ANSWER(int, OrvelPKICryptoFreeDevice, (void *), 1)
ANSWER(int, OrvelPKICryptoFreeMemory, (void *), 1)
ANSWER(int, OrvelPKICryptoEncodeECCPubKey,
       (int, Bytes, int, Bytes, int, unsigned char **out, int *length), handOver(out, length, 91))
ANSWER(int, OrvelPKICryptoEncodeECCSignature,
       (Bytes, int, Bytes, int, unsigned char **out, int *length), handOver(out, length, 72))

} // extern "C"

} // namespace tembra::bench
