// Files of tokens. Failures are thrown as Error(SAR_FILEERR).
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tembra::token::store {

using Path = std::filesystem::path;

// Throws Error(SAR_FILEERR). For the locks: windows.h and the SKF types cannot be included
// together.
[[noreturn]] void throwFileError();

// Creates a directory, closed to other users, and its parents.
void makePrivateDirectory(const Path &directory);

// The whole content; nothing if the file does not exist.
std::optional<std::string> readFile(const Path &file);

// Replaces the file in one step, so that readers, also after a kill, find the old or the new
// content. Only the user has access to it. The caller holds the token's lock.
void replaceFile(const Path &file, std::string_view content);

// Succeeds if the file does not exist.
void removeFile(const Path &file);

} // namespace tembra::token::store
