#include "tembrakey/io/files.h"

#include <cerrno>
#include <cstring>

#include "tembrakey/cli/failure.h"
#include "tembrakey/platform/files.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

[[noreturn]] void fail(const char *message, const std::string &path) {
    throw Failure(ExitCode::inputOutput, tr(message, {path, std::strerror(errno)}));
}

std::optional<std::uint64_t> sizeOf(std::FILE *stream) {
    if (std::fseek(stream, 0, SEEK_END) != 0)
        return std::nullopt;
    const long long end = platform::position(stream);
    std::rewind(stream);
    return end < 0 ? std::nullopt : std::optional<std::uint64_t>(end);
}

} // namespace

InputFile::InputFile(const std::string &path)
    : m_path(path), m_stream(path == "-" ? stdin : platform::openFile(path, "rb")) {
    if (m_stream == nullptr)
        fail("Cannot open {1}: {2}", m_path);
    if (m_stream != stdin)
        m_size = sizeOf(m_stream);
}

InputFile::~InputFile() {
    if (m_stream != stdin)
        std::fclose(m_stream);
}

std::size_t InputFile::read(std::uint8_t *buffer, std::size_t capacity) {
    const std::size_t count = std::fread(buffer, 1, capacity, m_stream);
    if (count < capacity && std::ferror(m_stream))
        fail("Cannot read {1}: {2}", m_path);
    return count;
}

OutputFile::OutputFile(const std::string &path) : m_path(path) {
    if (path == "-") {
        m_stream = stdout;
        return;
    }
    if (!platform::isSpecialFile(path))
        m_temporary = path + "." + platform::processNumber() + ".part";
    m_stream = platform::openFile(m_temporary.empty() ? path : m_temporary, "wb");
    if (m_stream == nullptr)
        fail("Cannot write {1}: {2}", m_path);
}

OutputFile::~OutputFile() {
    if (m_stream != nullptr && m_stream != stdout)
        std::fclose(m_stream);
    if (!m_temporary.empty())
        platform::removeFile(m_temporary);
}

void OutputFile::write(crypto::ByteView bytes) {
    if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), m_stream) != bytes.size())
        fail("Cannot write {1}: {2}", m_path);
}

void OutputFile::commit() {
    if (std::fflush(m_stream) != 0)
        fail("Cannot write {1}: {2}", m_path);
    if (m_stream == stdout)
        return;
    std::FILE *closing = m_stream;
    m_stream = nullptr;
    if (std::fclose(closing) != 0)
        fail("Cannot write {1}: {2}", m_path);
    if (!m_temporary.empty() && !platform::replaceFile(m_temporary, m_path))
        fail("Cannot write {1}: {2}", m_path);
    m_temporary.clear();
}

crypto::SecretBytes readWhole(const std::string &path, std::size_t limit) {
    InputFile file(path);
    crypto::SecretBytes bytes;
    for (std::size_t used = 0;;) {
        bytes.resize(used + 4096);
        const std::size_t count = file.read(bytes.data() + used, 4096);
        used += count;
        if (used > limit)
            throw Failure(ExitCode::usage,
                          tr("{1} is longer than {2} bytes", {path, std::to_string(limit)}));
        if (count < 4096) {
            bytes.resize(used);
            return bytes;
        }
    }
}

void writeWhole(const std::string &path, crypto::ByteView bytes) {
    OutputFile file(path);
    file.write(bytes);
    file.commit();
}

} // namespace tembra::tool
