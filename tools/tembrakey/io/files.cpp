#include "tembrakey/io/files.h"

#include <cerrno>
#include <cstring>

#include "tembrakey/cli/failure.h"
#include "tembrakey/platform/files.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

[[noreturn]] void fail(const char *message, const std::string &path) {
    throw Failure(ExitCode::InputOutput, tr(message, {path, std::strerror(errno)}));
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
    : path_(path), stream_(path == "-" ? stdin : platform::openFile(path, "rb")) {
    if (stream_ == nullptr)
        fail("Cannot open {1}: {2}", path_);
    if (stream_ != stdin)
        size_ = sizeOf(stream_);
}

InputFile::~InputFile() {
    if (stream_ != stdin)
        std::fclose(stream_);
}

std::size_t InputFile::read(std::uint8_t *buffer, std::size_t capacity) {
    const std::size_t count = std::fread(buffer, 1, capacity, stream_);
    if (count < capacity && std::ferror(stream_))
        fail("Cannot read {1}: {2}", path_);
    return count;
}

OutputFile::OutputFile(const std::string &path) : path_(path) {
    if (path == "-") {
        stream_ = stdout;
        return;
    }
    if (!platform::isSpecialFile(path))
        temporary_ = path + "." + platform::processNumber() + ".part";
    stream_ = platform::openFile(temporary_.empty() ? path : temporary_, "wb");
    if (stream_ == nullptr)
        fail("Cannot write {1}: {2}", path_);
}

OutputFile::~OutputFile() {
    if (stream_ != nullptr && stream_ != stdout)
        std::fclose(stream_);
    if (!temporary_.empty())
        platform::removeFile(temporary_);
}

void OutputFile::write(crypto::ByteView bytes) {
    if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), stream_) != bytes.size())
        fail("Cannot write {1}: {2}", path_);
}

void OutputFile::commit() {
    if (std::fflush(stream_) != 0)
        fail("Cannot write {1}: {2}", path_);
    if (stream_ == stdout)
        return;
    std::FILE *closing = stream_;
    stream_ = nullptr;
    if (std::fclose(closing) != 0)
        fail("Cannot write {1}: {2}", path_);
    if (!temporary_.empty() && !platform::replaceFile(temporary_, path_))
        fail("Cannot write {1}: {2}", path_);
    temporary_.clear();
}

crypto::SecretBytes readWhole(const std::string &path, std::size_t limit) {
    InputFile file(path);
    crypto::SecretBytes bytes;
    for (std::size_t used = 0;;) {
        bytes.resize(used + 4096);
        const std::size_t count = file.read(bytes.data() + used, 4096);
        used += count;
        if (used > limit)
            throw Failure(ExitCode::Usage,
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
