// The process and its surroundings, as far as the trace log needs them.
#pragma once

#include <cstddef>
#include <cstdio>
#include <ctime>

namespace tembra::platform {

long currentThreadId();

// The path of the trace log when no variable names one: the temporary directory and
// tembra_key_prov.log. False when it does not fit.
bool defaultTracePath(char *path, std::size_t size);

// Opens a text file for appending; null on failure. Where the system has file modes, a new file is
// for its owner alone: the trace can hold PINs. The stream is unbuffered, so that what is written
// in one piece reaches the file in one piece.
std::FILE *openForAppending(const char *path);

bool toLocalTime(std::time_t time, std::tm *local);

} // namespace tembra::platform
