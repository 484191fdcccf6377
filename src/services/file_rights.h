// Access rights of data objects, from the host's block to the token's values (GM/T 0016).
#pragma once

#include "platform/skf.h"

namespace tembra {

// The first byte of mode is its length, itself included: 2, 3 or 4. Returns 1 with the rights, or 0
// for any other length.
int GetFileRight(const char *mode, ULONG *ulReadRights, ULONG *ulWriteRights);

} // namespace tembra
