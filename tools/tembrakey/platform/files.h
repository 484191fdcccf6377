// Files by their UTF-8 names.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

namespace tembra::tool::platform {

inline std::filesystem::path toPath(const std::string &utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

// fopen: mode is "rb" or "wb". Null with errno set on failure.
std::FILE *openFile(const std::string &path, const char *mode);

// A new file, for this user alone if secret. Null with errno set on failure, also if it exists.
std::FILE *createFile(const std::string &path, bool secret);

// Removes this file when the process is interrupted; an empty path ends that.
void removeOnInterrupt(const std::string &path);

// Removes a file that a library of this process may still have open.
void removeOpenFile(const std::string &path);

// Position in the stream in bytes, also beyond 2 GiB; negative on failure.
long long position(std::FILE *stream);

// Whether the system has modes that keep other users from files.
extern const bool HAS_FILE_MODES;

bool isReadable(const std::string &path);
bool isWritable(const std::string &path); // a file, or a folder that files can be made in

// The version in a library's file, "1.0.0"; empty if there is none.
std::string fileVersion(const std::string &path);

// A text unlike that of any other process now running.
std::string processNumber();

} // namespace tembra::tool::platform
