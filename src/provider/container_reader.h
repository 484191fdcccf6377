// Reading one container of a token into its record.
#pragma once

#include "provider/records.h"

namespace tembra {

// Opens a container and reads its public keys and certificates; what cannot be read is left out.
// Null when it cannot be opened or typed, or memory is short. Freed with freeContainer.
Container *getContainer(HAPPLICATION hApp, const char *name);

} // namespace tembra
