// Reads one container of a token into its record.
#pragma once

#include "provider/records.h"

namespace tembra {

// Opens a container and reads its public keys and certificates, leaving out unreadable ones.
// Returns null if it cannot be opened or typed, or if out of memory. Freed with freeContainer.
Container *getContainer(HAPPLICATION hApp, const char *name);

} // namespace tembra
