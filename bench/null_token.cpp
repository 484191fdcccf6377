#include "null_token.h"

#include "platform/orvel_crypto.h"
#include "platform/skf.h"

#include <cstdio>

namespace tembra::bench {

NullToken nullToken;

namespace {

using Clock = std::chrono::steady_clock;
using Bytes = const unsigned char *;

unsigned char object[128]; // what every handle and buffer points to

ULONG give(void **handle) {
    *handle = object;
    return SAR_OK;
}

ULONG give(ULONG *out, std::size_t number) {
    *out = static_cast<ULONG>(number);
    return SAR_OK;
}

int give(unsigned char **out, int *length, int size) {
    *out = object;
    *length = size;
    return 1;
}

// A list with the names "stem 00", "stem 01" and so on.
ULONG give(char *list, ULONG *size, const char *stem, int count) {
    char *end = list;
    for (int i = 0; i < count; ++i)
        end += std::snprintf(end, 20, "%s %02d", stem, i) + 1;
    *end++ = '\0';
    return give(size, static_cast<std::size_t>(end - list));
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

} // namespace

// Exported functions and what they answer.
#define ANSWER(type, name, parameters, answer)                                                     \
    type name parameters {                                                                         \
        return answer;                                                                             \
    }
#define SKF(name, parameters, answer) ANSWER(ULONG, SKF_##name, parameters, answer)
#define ORVEL(type, name, parameters, answer) ANSWER(type, OrvelPKICrypto##name, parameters, answer)

extern "C" {

SKF(EnumDev, (BOOL, LPSTR list, ULONG *size), give(list, size, "null token", 1))
SKF(ConnectDev, (LPSTR, DEVHANDLE *device), give(device))
SKF(DisConnectDev, (DEVHANDLE), SAR_OK)
SKF(LockDev, (DEVHANDLE, ULONG), SAR_OK)
SKF(UnlockDev, (DEVHANDLE), SAR_OK)
SKF(GetDevInfo, (DEVHANDLE, DEVINFO *info), (*info = {}, SAR_OK))
SKF(GenRandom, (DEVHANDLE, BYTE *, ULONG), SAR_OK)
SKF(EnumApplication, (DEVHANDLE, LPSTR list, ULONG *size), give(list, size, "application", 1))
SKF(OpenApplication, (DEVHANDLE, LPSTR, HAPPLICATION *opened), give(opened))
SKF(CloseApplication, (HAPPLICATION), SAR_OK)
SKF(ClearSecureState, (HAPPLICATION), SAR_OK)
SKF(EnumContainer, (HAPPLICATION, LPSTR list, ULONG *size),
    give(list, size, "container", nullToken.containers))
SKF(OpenContainer, (HAPPLICATION, LPSTR, HCONTAINER *opened), give(opened))
SKF(CloseContainer, (HCONTAINER), SAR_OK)
SKF(GetContainerType, (HCONTAINER, ULONG *type), give(type, CONTAINER_TYPE_ECC))
SKF(ExportPublicKey, (HCONTAINER, BOOL, BYTE *, ULONG *size), give(size, sizeof(ECCPUBLICKEYBLOB)))
SKF(ExportCertificate, (HCONTAINER, BOOL, BYTE *, ULONG *size), give(size, 600))
SKF(ECCSignData, (HCONTAINER, BYTE *, ULONG, ECCSIGNATUREBLOB *), take(nullToken.signature))
SKF(SetSymmKey, (DEVHANDLE, BYTE *, ULONG, HANDLE *key), give(key))
SKF(EncryptInit, (HANDLE, BLOCKCIPHERPARAM), SAR_OK)
SKF(Encrypt, (HANDLE, BYTE *, ULONG length, BYTE *, ULONG *outLength),
    (give(outLength, length), take(nullToken.cipherByte *length)))
SKF(DigestInit, (DEVHANDLE, ULONG, ECCPUBLICKEYBLOB *, BYTE *, ULONG, HANDLE *hash), give(hash))
SKF(DigestUpdate, (HANDLE, BYTE *, ULONG), take(nullToken.digestPiece))
SKF(CloseHandle, (HANDLE), SAR_OK)

ORVEL(void *, GetPseudoDevice, (void), object)
ORVEL(int, FreeDevice, (void *), 1)
ORVEL(int, FreeMemory, (void *), 1)
ORVEL(int, EncodeECCPubKey, (int, Bytes, int, Bytes, int, unsigned char **out, int *length),
      give(out, length, 91))
ORVEL(int, EncodeECCSignature, (Bytes, int, Bytes, int, unsigned char **out, int *length),
      give(out, length, 72))

} // extern "C"

} // namespace tembra::bench
