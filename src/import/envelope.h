// Enveloping of a plain key pair for a container.
#pragma once

#include "provider/records.h"

namespace tembra {

// Turns a "_KEYPAIR" blob into an "SCAENCKP" blob for the container of a signature key pair: the
// private key is encrypted with a random symmetric key, and that key with the container's signature
// public key. Returns 1 with the blob, to be freed with std::free, and its length; 0 on failure,
// without a line in the trace. Requires g_lock.
int EncKeyPairBlob(const Keypair *hSignKeypair, const unsigned char *keyblob, int keybloblen,
                   unsigned char **encblob, int *encbloblen);

} // namespace tembra
