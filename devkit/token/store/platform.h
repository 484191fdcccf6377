// What differs between operating systems in storing tokens.
#pragma once

#include <filesystem>
#include <optional>

namespace tembra::token::store {

// How often to try an operation on a file. On Windows it fails while another process, a virus
// scanner for example, has the file open; this is about two seconds.
extern const int FILE_TRIES;

// The default directory of tokens, in the user's data directory; nothing if that is unknown.
std::optional<std::filesystem::path> userTokenDirectory();

} // namespace tembra::token::store
