#include "platform/orvel_crypto.h"

namespace {

unsigned char bytes[128];

int handOver(unsigned char **out, int *length, int size) {
    *out = bytes;
    *length = size;
    return 1;
}

} // namespace

using Bytes = const unsigned char *;

extern "C" {

void *OrvelPKICryptoGetPseudoDevice(void) {
    return bytes;
}
int OrvelPKICryptoEncodeECCPubKey(int, Bytes, int, Bytes, int, unsigned char **out, int *length) {
    return handOver(out, length, 91);
}
int OrvelPKICryptoEncodeECCSignature(Bytes, int, Bytes, int, unsigned char **out, int *length) {
    return handOver(out, length, 72);
}

// The others are there to be found; no measurement calls them for what they do.
#define NULL_CALL(name, ...)                                                                       \
    int name(__VA_ARGS__) {                                                                        \
        return 1;                                                                                  \
    }

NULL_CALL(OrvelPKICryptoFreeDevice, void *)
NULL_CALL(OrvelPKICryptoFreeMemory, void *)
NULL_CALL(OrvelPKICryptoFreePublicKey, void *)
NULL_CALL(OrvelPKICryptoGenerateRandom, void *, int, unsigned char *)
NULL_CALL(OrvelPKICryptoEncodeRSAPubKey, Bytes, int, Bytes, int, unsigned char **, int *)
NULL_CALL(OrvelPKICryptoDecodeRSAPubKey, Bytes, int, unsigned char **, int *, unsigned char **,
          int *)
NULL_CALL(OrvelPKICryptoDecodeECCPubKey, Bytes, int, int *, unsigned char **, int *,
          unsigned char **, int *)
NULL_CALL(OrvelPKICryptoDecodeECCKeyPair, Bytes, int, int *, unsigned char **, int *,
          unsigned char **, int *, unsigned char **, int *)
NULL_CALL(OrvelPKICryptoRSAPrivKeyToDER, Bytes, int, unsigned char **, int *)
NULL_CALL(OrvelPKICryptoImportPublicKey, void *, Bytes, int, void **)
NULL_CALL(OrvelPKICryptoPublicKeyEncrypt, void *, int, const void *, Bytes, int, unsigned char **,
          int *)

} // extern "C"
