// The access rights of data objects: from the host's block to the token's (GM/T 0016).
#pragma once

#include "platform/skf.h"

namespace tembra {

// mode holds as many bytes as its first one says, itself included: 2, 3 or 4. 1 with the rights, or
// 0 for another count.
int GetFileRight(const char *mode, ULONG *ulReadRights, ULONG *ulWriteRights);

} // namespace tembra
