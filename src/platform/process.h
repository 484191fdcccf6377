// What the trace log needs of the process and the system.
#pragma once

#include <cstddef>
#include <cstdlib>

namespace tembra::platform {

// An environment variable as the process has it now. On Windows each C run-time keeps a copy of the
// environment, so getenv would miss what a host with another run-time sets.
class EnvironmentVariable {
public:
    explicit EnvironmentVariable(const char *name);
    ~EnvironmentVariable() { std::free(m_copy); }
    EnvironmentVariable(const EnvironmentVariable &) = delete;
    EnvironmentVariable &operator=(const EnvironmentVariable &) = delete;

    // Null if the variable is not set; empty if memory ran out.
    const char *value() const { return m_value; }

private:
    static constexpr std::size_t USUAL_CAPACITY = 64;
    char m_usual[USUAL_CAPACITY];
    char *m_copy = nullptr; // of a value that does not fit m_usual
    const char *m_value;
};

long currentThreadId();

// The path of the trace log if no variable names one: tembra_key_prov.log in the temporary
// directory. Returns false if it does not fit.
bool defaultTracePath(char *path, std::size_t size);

inline constexpr int NO_FILE = -1;

// Opens a text file for appending; returns a descriptor or NO_FILE. Where the system has file
// modes, a new file is readable by its owner only: the trace can contain PINs.
int openForAppending(const char *path);

// What makes a file in a directory that others can write to unsafe to append to.
enum class FileHazard { none, symbolicLink, notRegular, otherOwner, severalLinks };
// Returns none for a file that does not exist, and where each user has a temporary directory.
FileHazard fileHazard(const char *path);
// Opens without following a link and without blocking; returns NO_FILE if the file is unsafe.
int openSafelyForAppending(const char *path);

void closeFile(int file);

// Appends in one system call, so that lines of several threads and processes do not mix; line feeds
// become what ends a line of a text file. What does not fit on the medium is lost.
void appendToFile(int file, const char *text, std::size_t size);

// Writes what printf's %p shows on this platform; returns the length.
inline constexpr std::size_t POINTER_CAPACITY = 24;
std::size_t pointerText(const void *pointer, char (&text)[POINTER_CAPACITY]);

// The local time, for example 2024-01-31 12:00:00; empty if the system cannot convert it.
inline constexpr std::size_t TIME_CAPACITY = 32;
inline constexpr const char *TIME_FORMAT = "%Y-%m-%d %H:%M:%S";
void localTimeText(char (&text)[TIME_CAPACITY]);

} // namespace tembra::platform
