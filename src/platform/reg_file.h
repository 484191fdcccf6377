// A reader of the text form in which Windows' registry editor exports and imports keys.
#pragma once

#include <cstddef>
#include <cstdio>

namespace tembra::platform {

// One line after another of a registry file, in UTF-8 or in the editor's UTF-16 with its byte order
// mark. Lines that end in a backslash go on in the next one. Every UTF-16 unit of the text stands
// as one char, units beyond ASCII as '?'; a line is cut to the buffer.
class RegFile {
public:
    explicit RegFile(const char *path);
    ~RegFile();
    RegFile(const RegFile &) = delete;
    RegFile &operator=(const RegFile &) = delete;

    bool isOpen() const { return m_file != nullptr; }
    // The next line without surrounding blanks, or null at the end.
    const char *nextLine();

private:
    int nextUnit();
    int nextUtf8Unit();
    void append(char unit);
    void trimEnd();

    static constexpr std::size_t LINE_CAPACITY = 1024;
    std::FILE *m_file;
    bool m_utf16 = false;
    bool m_pendingUnit = false; // the second unit of a character beyond the basic plane
    char m_line[LINE_CAPACITY] = {};
    std::size_t m_length = 0;
};

} // namespace tembra::platform
