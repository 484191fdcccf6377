// The public keys that a container caches, in the host library's memory. Their bytes never change:
// a reader enters itself in the container's list and copies them without a lock, and whoever uses
// replaced bytes last frees them. That takes no allocation, so neither side can fail.
#pragma once

#include "provider/records.h"

namespace tembra {

// Caches a key and takes its memory over.
void replacePublicKey(Container *hContainer, bool isSign, unsigned char *key, int keyLen);

// Copies a cached key into a new public key record. Returns the reason if that is impossible.
const char *copyPublicKey(Container *hContainer, bool isSign, PublicKey *hPublicKey);

} // namespace tembra
