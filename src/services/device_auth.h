// Device authentication with the key that a token was given at the factory (GM/T 0016).
#pragma once

#include "provider/records.h"

#include <cstddef>

namespace tembra {

inline constexpr std::size_t AUTH_KEY_LEN = 16;

// Converts 32 characters to the key and authenticates with it. Sets *pretrynum to -1 unless
// pretrynum is null. Returns 1, 0 or -5; takes no lock.
int VerifySuperPwd(Device *hDevice, const char *pwd, int *pretrynum);

// Answers a challenge of the token. Returns 1; -5 if the token refuses the answer; 0.
int ExternalAuth(Device *hDevice, const unsigned char key[AUTH_KEY_LEN]);

} // namespace tembra
