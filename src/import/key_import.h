// Import of the payload of an "SCAENCKP" blob into one container of the token.
#pragma once

#include "provider/records.h"

namespace tembra {

// Check that the envelope was made for this container, give it to the token and read the
// container's encryption public key anew. 1; -8 when the token refuses for lack of login; 0, with
// a line in the trace. Under g_lock.
int importSM2KeyPair(Container *hContainer, const unsigned char *keyblob, int keyblobLen);
int importRSAKeyPair(Container *hContainer, const unsigned char *keyblob, int keyblobLen);

// The SKF identifier for a payload's symmetric algorithm: only the host's ECB identifiers occur in
// envelopes. -1 for any other.
int envelopeAlgorithm(std::uint32_t algo);

// Puts a newly read encryption public key in place of the cached one.
void replaceEncPubKey(Container *hContainer, unsigned char *key, int keyLen);

} // namespace tembra
