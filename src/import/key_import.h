// Import of the payload of an "SCAENCKP" blob into one container of the token.
#pragma once

#include "provider/records.h"

namespace tembra {

// Check that the envelope was made for this container and that the device has room for the pair,
// import it into the token and reread the container's encryption public key. Return 1; -8 if nobody
// is logged in; 0, with a line in the trace. Require g_lock.
int importSM2KeyPair(const Device *hDevice, Container *hContainer, const unsigned char *keyblob,
                     int keyblobLen);
int importRSAKeyPair(const Device *hDevice, Container *hContainer, const unsigned char *keyblob,
                     int keyblobLen);

// The SKF identifier for a payload's symmetric algorithm, which must be one of the host's ECB
// identifiers; -1 for any other.
int envelopeAlgorithm(std::uint32_t algo);

} // namespace tembra
