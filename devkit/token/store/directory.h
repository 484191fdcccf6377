// The directory of tokens: one JSON file and, while somebody works with it, one lock file a token.
#pragma once

#include "file_system.h"

#include <string>
#include <string_view>
#include <vector>

namespace tembra::token::store {

// TEMBRA_SOFT_TOKEN_DIR, else the user's own directory; asked for anew by every call, so that a
// process may move on to another directory. Throws std::runtime_error when there is neither.
Path tokenDirectory();

// Device names in order. Other files in the directory are passed over.
std::vector<std::string> tokenNames();

// "TEMBRA-SOFT-" and a serial number; a serial number is 1 to 32 letters, digits, '-' or '_', so
// that a name is always a plain file name.
std::string tokenName(std::string_view serial);
bool isTokenName(std::string_view name);

Path tokenFile(std::string_view name);
Path lockFile(const Path &tokenFile);

} // namespace tembra::token::store
