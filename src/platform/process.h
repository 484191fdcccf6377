// The process and its surroundings, as far as the trace log needs them.
#pragma once

#include <cstddef>

namespace tembra::platform {

long currentThreadId();

// The path of the trace log when no variable names one: the temporary directory and
// tembra_key_prov.log. False when it does not fit.
bool defaultTracePath(char *path, std::size_t size);

inline constexpr int NO_FILE = -1;

// Opens a text file that lines are appended to; a descriptor, or NO_FILE. Where the system has file
// modes, a new file is for its owner alone: the trace can hold PINs.
int openForAppending(const char *path);
void closeFile(int file);

// Appends in one system call, without a lock of our own: the system keeps apart the lines of
// several threads, and of several processes. What does not fit on the medium is lost.
void appendToFile(int file, const char *text, std::size_t size);

// What printf's %p shows on this platform; returns the length.
inline constexpr std::size_t POINTER_CAPACITY = 24;
std::size_t pointerText(const void *pointer, char (&text)[POINTER_CAPACITY]);

// What ends a line of a text file here.
extern const char LINE_END[];

// The local time as in 2024-01-31 12:00:00; empty when the system cannot tell it.
inline constexpr std::size_t TIME_CAPACITY = 32;
inline constexpr const char *TIME_FORMAT = "%Y-%m-%d %H:%M:%S";
void localTimeText(char (&text)[TIME_CAPACITY]);

} // namespace tembra::platform
