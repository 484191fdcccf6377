#include "tembrakey/io/files.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "tembrakey/io/failure.h"
#include "tembrakey/platform/files.h"
#include "tembrakey/platform/streams.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace fs = std::filesystem;
using platform::toPath;

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

std::string inputName(const std::string &path) {
    return path == "-" ? tr("standard input") : path;
}

InputFile::InputFile(const std::string &path)
    : m_path(path), m_stream(path == "-" ? stdin : platform::openFile(path, "rb")) {
    if (m_stream == nullptr)
        fail(N_("cannot open {1}: {2}"), inputName(m_path));
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
        fail(N_("cannot read {1}: {2}"), inputName(m_path));
    return count;
}

OutputFile::OutputFile(const std::string &path, Access access) : m_path(path) {
    if (path == "-") {
        m_stream = platform::standardOutput();
        return;
    }
    std::error_code error;
    fs::path target = toPath(path);
    for (int links = 0; links < 40 && fs::is_symlink(target, error); ++links)
        target = target.parent_path() / fs::read_symlink(target, error);
    const fs::file_status before = fs::status(target, error);
    if (fs::exists(before) && !fs::is_regular_file(before)) {
        m_stream = platform::openFile(path, "wb");
    } else {
        const std::u8string followed = target.u8string();
        m_path.assign(followed.begin(), followed.end());
        m_temporary = m_path + "." + platform::processNumber() + ".part";
        m_stream = platform::createFile(m_temporary, access == Access::owner || exists(before));
        platform::removeOnInterrupt(m_temporary);
    }
    if (m_stream == nullptr)
        fail("cannot write {1}: {2}", path);
    if (!m_temporary.empty() && exists(before))
        fs::permissions(toPath(m_temporary), before.permissions(), error);
}

OutputFile::~OutputFile() {
    if (m_stream != nullptr && m_stream != platform::standardOutput())
        std::fclose(m_stream);
    if (m_temporary.empty())
        return;
    std::error_code error;
    fs::remove(toPath(m_temporary), error);
    platform::removeOnInterrupt("");
}

void OutputFile::write(crypto::ByteView bytes) {
    if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), m_stream) != bytes.size())
        fail("cannot write {1}: {2}", m_path == "-" ? tr("standard output") : m_path);
}

void OutputFile::commit() {
    if (std::fflush(m_stream) != 0)
        fail("cannot write {1}: {2}", m_path == "-" ? tr("standard output") : m_path);
    if (m_stream == platform::standardOutput())
        return;
    if (std::fclose(std::exchange(m_stream, nullptr)) != 0)
        fail("cannot write {1}: {2}", m_path == "-" ? tr("standard output") : m_path);
    if (m_temporary.empty())
        return;
    std::error_code error;
    fs::rename(toPath(m_temporary), toPath(m_path), error);
    if (error)
        throw Failure(ExitCode::inputOutput,
                      tr("cannot write {1}: {2}", {m_path, error.message()}));
    m_temporary.clear();
    platform::removeOnInterrupt("");
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

void writeWhole(const std::string &path, crypto::ByteView bytes, Access access) {
    OutputFile file(path, access);
    file.write(bytes);
    file.commit();
}

void requireDifferentFiles(const std::string &input, const std::string &output) {
    std::error_code error;
    if (input != "-" && output != "-" && fs::is_regular_file(toPath(output), error) &&
        fs::equivalent(toPath(input), toPath(output), error))
        throw Failure(ExitCode::usage, tr("{1} is the input: write to another file", {output}));
}

} // namespace tembra::tool
