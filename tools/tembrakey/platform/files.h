// Files by their UTF-8 names, and inherited descriptors.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace tembra::tool::platform {

// fopen: mode is "rb" or "wb". Null with errno set on failure.
std::FILE *openFile(const std::string &path, const char *mode);

// Position in the stream in bytes, also beyond 2 GiB; negative on failure.
long long position(std::FILE *stream);

// Whether path is a file that can be read.
bool isReadable(const std::string &path);

// Whether path exists and is no regular file: a device, a pipe.
bool isSpecialFile(const std::string &path);

// The version that a library's file tells of itself, "1.0.0"; empty when it tells none.
std::string fileVersion(const std::string &path);

// The date of its last change, "2026-11-21"; empty when unknown.
std::string fileDate(const std::string &path);

struct FileState {
    bool exists = false;
    bool isRegular = false;
    bool isWritable = false;    // or can be made there
    bool othersMayRead = false; // never where the system has no file modes
    long long size = 0;
};
FileState fileState(const std::string &path);

// Replaces to by from in one step. False with errno set on failure.
bool replaceFile(const std::string &from, const std::string &to);

void removeFile(const std::string &path);

// A text unlike that of any other process now running.
std::string processNumber();

// Reads at most count bytes from an inherited descriptor: their number, 0 at the end, -1 on
// failure.
int readDescriptor(int descriptor, char *bytes, unsigned count);

} // namespace tembra::tool::platform
