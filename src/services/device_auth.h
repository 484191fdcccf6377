// Device authentication with the key that a token was given at the factory (GM/T 0016).
#pragma once

#include "provider/records.h"

#include <cstddef>

namespace tembra {

inline constexpr std::size_t AUTH_KEY_LEN = 16;

// Turns 32 characters into the key and authenticates with it. pwd is not null; *pretrynum, where
// there is one, becomes -1. 1, 0, -5. Takes no lock.
int VerifySuperPwd(Device *hDevice, const char *pwd, int *pretrynum);

// The challenge and response with the token. 1; -5 when the token refuses; 0.
int ExternalAuth(Device *hDevice, const unsigned char key[AUTH_KEY_LEN]);

} // namespace tembra
