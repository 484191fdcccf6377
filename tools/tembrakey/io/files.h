// Files as streams of bytes. "-" is standard input or output. All failures are Failure.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "crypto/secret.h"

namespace tembra::tool {

class InputFile {
public:
    explicit InputFile(const std::string &path);
    ~InputFile();
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    // Fills the buffer as far as the file goes: the number of bytes, 0 at the end.
    std::size_t read(std::uint8_t *buffer, std::size_t capacity);
    // The whole length in bytes when it is known.
    std::optional<std::uint64_t> size() const { return m_size; }
    const std::string &name() const { return m_path; }

private:
    std::string m_path;
    std::FILE *m_stream;
    std::optional<std::uint64_t> m_size;
};

// A file appears under its name, complete, at commit(); without it nothing is left behind. Standard
// output and devices are written as the bytes come.
class OutputFile {
public:
    explicit OutputFile(const std::string &path);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    void write(crypto::ByteView bytes);
    void commit();

private:
    std::string m_path;
    std::string m_temporary; // empty when written directly
    std::FILE *m_stream;
};

// A whole file of at most limit bytes.
crypto::SecretBytes readWhole(const std::string &path, std::size_t limit = 1 << 20);
void writeWhole(const std::string &path, crypto::ByteView bytes);

} // namespace tembra::tool
