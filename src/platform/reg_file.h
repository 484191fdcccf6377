// Reads the text format in which the Windows registry editor exports keys.
#pragma once

#include <cstddef>
#include <cstdio>

namespace tembra::platform {

// Returns the lines of a registry file, in UTF-8 or in UTF-16 with a byte order mark. A line that
// ends in a backslash continues in the next one. Each UTF-16 unit becomes one char, '?' if it is
// not ASCII. Long lines are truncated.
class RegFile {
public:
    explicit RegFile(const char *path);
    ~RegFile();
    RegFile(const RegFile &) = delete;
    RegFile &operator=(const RegFile &) = delete;

    bool isOpen() const { return m_file != nullptr; }
    // Returns the next line without surrounding blanks, or null at the end.
    const char *nextLine();

private:
    int nextUnit();
    int nextUtf8Unit();
    void append(char unit);
    void trimEnd();

    static constexpr std::size_t LINE_CAPACITY = 1024;
    std::FILE *m_file;
    bool m_utf16 = false;
    bool m_pendingUnit = false; // the second half of a surrogate pair
    char m_line[LINE_CAPACITY] = {};
    std::size_t m_length = 0;
};

} // namespace tembra::platform
