// The few things the token store asks of the operating system. The twins file_system_posix.cpp and
// file_system_windows.cpp implement them. Failures that the caller can't act on are thrown as
// std::system_error.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tembra::token::store {

using Path = std::filesystem::path;

// A path from UTF-8 text, and back.
Path pathFromUtf8(std::string_view text);
std::string utf8FromPath(const Path &path);

// The variable's value as UTF-8; nothing when it is unset or empty.
std::optional<std::string> environment(const char *name);

// Where tokens live when no environment variable says otherwise: a folder of the user's data
// directory. Nothing when the user has none.
std::optional<Path> userTokenDirectory();

// Creates the directory and its parents, closed to other users.
void makePrivateDirectory(const Path &directory);

// The first `limit` bytes of a file, or all of it when it is shorter; nothing when there is no such
// file. Sees a file that replaceFile() has written either as it was or as it is, never in between.
std::optional<std::string> readFile(const Path &file, std::size_t limit);

// Replaces the file by one with this content, readable by the user alone, so that a kill or a power
// cut at any moment leaves the old file or the new one. One writer at a time: the caller holds the
// file's lock. A temporary file left behind by a killed writer is taken over by the next.
void replaceFile(const Path &file, std::string_view content);

// Removes the file; nothing happens when there is none.
void removeFile(const Path &file);

} // namespace tembra::token::store
