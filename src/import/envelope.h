// Enveloping of a plain key pair for a container.
#pragma once

#include "provider/records.h"

namespace tembra {

// Turns a "_KEYPAIR" blob into an "SCAENCKP" blob for the container of a signature key pair: the
// private key under a random symmetric key, that key under the container's signature public key.
// 1 with the blob, freed with std::free, and its length; 0 on any failure, without a line in the
// trace. Under g_lock.
int EncKeyPairBlob(const Keypair *hSignKeypair, const unsigned char *keyblob, int keybloblen,
                   unsigned char **encblob, int *encbloblen);

} // namespace tembra
