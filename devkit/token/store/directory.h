// The directory of tokens: a JSON file and a lock file for each token.
#pragma once

#include "file_system.h"

#include <string>
#include <string_view>
#include <vector>

namespace tembra::token::store {

// TEMBRA_SOFT_TOKEN_DIR, else the user's own directory. Every call reads the variable, so that a
// process may change it. Error(SAR_FAIL) if there is neither.
Path tokenDirectory();

// Device names in order. Other files in the directory are ignored.
std::vector<std::string> tokenNames();

// "TEMBRA-SOFT-" and a serial number of 1 to 32 letters, digits, '-' or '_', which makes every name
// a valid file name.
std::string tokenName(std::string_view serial);
bool isTokenName(std::string_view name);

Path tokenFile(std::string_view name);
Path lockFile(const Path &tokenFile);

} // namespace tembra::token::store
