// Public keys from the token's blobs (GM/T 0016) to the host library's encoding.
#pragma once

#include "platform/skf.h"

namespace tembra {

// Encode a blob; the answer is the host library's, 1 for success. The encoding is the host
// library's memory. A modulus longer than its field gives 0.
int encodeRSAPublicKey(const RSAPUBLICKEYBLOB &blob, unsigned char **keyblob, int *keybloblen);
int encodeECCPublicKey(const ECCPUBLICKEYBLOB &blob, unsigned char **keyblob, int *keybloblen);

// Read the signature key (bSignFlag non-zero) or the encryption key of a container. 1 with the
// encoding, which the caller gives back with OrvelPKICryptoFreeMemory, and the modulus size in
// *pbits where pbits is not null; 0 on failure, with the outputs untouched.
int GetRSAPublicKey(HCONTAINER hCon, int bSignFlag, unsigned char **keyblob, int *keybloblen,
                    int *pbits);
int GetECCPublicKey(HCONTAINER hCon, int bSignFlag, unsigned char **keyblob, int *keybloblen);

} // namespace tembra
