// Files as streams of bytes. "-" is standard input or output. All failures are Failure.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "crypto/secret.h"

namespace tembra::tool {

// What messages call a file that is read: "-" is the standard input.
std::string inputName(const std::string &path);

class InputFile {
public:
    explicit InputFile(const std::string &path);
    ~InputFile();
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    // Fills the buffer as far as possible: the number of bytes, 0 at the end of the file.
    std::size_t read(std::uint8_t *buffer, std::size_t capacity);
    // The whole length in bytes, if known.
    std::optional<std::uint64_t> size() const { return m_size; }

private:
    std::string m_path;
    std::FILE *m_stream;
    std::optional<std::uint64_t> m_size;
};

// Who may read a new file: everybody whom the user's settings allow, or only the user. A file that
// is replaced keeps its mode.
enum class Access { usual, owner };

// The file appears under its name, complete, at commit(); without that, and after an interrupt, the
// old one stays. Links are followed. Standard output and devices are written directly.
class OutputFile {
public:
    explicit OutputFile(const std::string &path, Access access = Access::usual);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    void write(crypto::ByteView bytes);
    void commit();

private:
    std::string m_path;      // behind all links
    std::string m_temporary; // empty when written directly
    std::FILE *m_stream;
};

// A whole file of at most limit bytes.
crypto::SecretBytes readWhole(const std::string &path, std::size_t limit = 1 << 20);
void writeWhole(const std::string &path, crypto::ByteView bytes, Access access = Access::usual);

// Refuses an output that would overwrite an input.
void requireDifferentFiles(const std::string &input, const std::string &output);

} // namespace tembra::tool
