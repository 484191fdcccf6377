// Converts public keys from the token's blobs (GM/T 0016) to the host library's encoding.
#pragma once

#include "platform/skf.h"

namespace tembra {

// Encode a blob in the host library's memory and return the library's result, 1 for success. Return
// 0 for a modulus longer than its field.
int encodeRSAPublicKey(const RSAPUBLICKEYBLOB &blob, unsigned char **keyblob, int *keybloblen);
int encodeECCPublicKey(const ECCPUBLICKEYBLOB &blob, unsigned char **keyblob, int *keybloblen);

// Read the signature key (bSignFlag non-zero) or the encryption key of a container. Return 1 and
// store the encoding, to be freed with OrvelPKICryptoFreeMemory, and the modulus size in *pbits if
// pbits is not null. Return 0 on failure and leave the outputs untouched.
int GetRSAPublicKey(HCONTAINER hCon, int bSignFlag, unsigned char **keyblob, int *keybloblen,
                    int *pbits);
int GetECCPublicKey(HCONTAINER hCon, int bSignFlag, unsigned char **keyblob, int *keybloblen);

} // namespace tembra
