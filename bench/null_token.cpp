#include "null_token.h"

#include "platform/orvel_crypto.h"
#include "platform/skf.h"

#include <cstdio>

namespace tembra::bench {

NullToken nullToken;

namespace {

using Clock = std::chrono::steady_clock;
using Bytes = const unsigned char *;

unsigned char object[128]; // what handles and buffers point to

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

// Writes a list of the names "stem 00", "stem 01" and so on.
ULONG give(char *list, ULONG *size, const char *stem, int count) {
    char *end = list;
    for (int i = 0; i < count; ++i)
        end += std::snprintf(end, 20, "%s %02d", stem, i) + 1;
    *end++ = '\0';
    return give(size, static_cast<std::size_t>(end - list));
}

// Waits actively, since a sleep takes at least a time slice.
ULONG take(std::chrono::nanoseconds time) {
    if (time.count() > 0) {
        const Clock::time_point end = Clock::now() + time;
        while (Clock::now() < end) {
        }
    }
    return SAR_OK;
}

} // namespace

// The functions that return more than success.
#define DEFINE(type, name, parameters, value)                                                      \
    type name parameters {                                                                         \
        return value;                                                                              \
    }
#define SKF(name, parameters, value) DEFINE(ULONG, SKF_##name, parameters, value)
#define ORVEL(name, parameters, value) DEFINE(int, OrvelPKICrypto##name, parameters, value)

extern "C" {

SKF(EnumDev, (BOOL, LPSTR list, ULONG *size), give(list, size, "null token", 1))
SKF(ConnectDev, (LPSTR, DEVHANDLE *device), give(device))
SKF(GetDevInfo, (DEVHANDLE, DEVINFO *info), (*info = {}, SAR_OK))
SKF(EnumApplication, (DEVHANDLE, LPSTR list, ULONG *size), give(list, size, "application", 1))
SKF(OpenApplication, (DEVHANDLE, LPSTR, HAPPLICATION *opened), give(opened))
SKF(EnumContainer, (HAPPLICATION, LPSTR list, ULONG *size),
    give(list, size, "container", nullToken.containers))
SKF(OpenContainer, (HAPPLICATION, LPSTR, HCONTAINER *opened), give(opened))
SKF(GetContainerType, (HCONTAINER, ULONG *type), give(type, CONTAINER_TYPE_ECC))
SKF(ExportPublicKey, (HCONTAINER, BOOL, BYTE *, ULONG *size), give(size, sizeof(ECCPUBLICKEYBLOB)))
SKF(ExportCertificate, (HCONTAINER, BOOL, BYTE *, ULONG *size), give(size, 600))
SKF(ECCSignData, (HCONTAINER, BYTE *, ULONG, ECCSIGNATUREBLOB *), take(nullToken.signature))
SKF(SetSymmKey, (DEVHANDLE, BYTE *, ULONG, HANDLE *key), give(key))
SKF(Encrypt, (HANDLE, BYTE *, ULONG length, BYTE *, ULONG *outLength),
    (give(outLength, length), take(nullToken.cipherByte *length)))
SKF(DigestInit, (DEVHANDLE, ULONG, ECCPUBLICKEYBLOB *, BYTE *, ULONG, HANDLE *hash), give(hash))
SKF(DigestUpdate, (HANDLE, BYTE *, ULONG), take(nullToken.digestPiece))

ORVEL(EncodeECCPubKey, (int, Bytes, int, Bytes, int, unsigned char **out, int *length),
      give(out, length, 91))
ORVEL(EncodeECCSignature, (Bytes, int, Bytes, int, unsigned char **out, int *length),
      give(out, length, 72))

} // extern "C"

} // namespace tembra::bench
