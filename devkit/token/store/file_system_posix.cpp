#include "file_system.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tembra::token::store {

namespace {

class File {
public:
    File(const Path &path, int flags) : m_fd(::open(path.c_str(), flags | O_CLOEXEC, 0600)) {}
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    ~File() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    int fd() const { return m_fd; }
    bool isOpen() const { return m_fd >= 0; }

private:
    int m_fd;
};

[[noreturn]] void fail(const char *what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void writeAll(int fd, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(fd, content.data(), content.size());
        if (written < 0 && errno != EINTR)
            fail("write");
        if (written > 0)
            content.remove_prefix(static_cast<std::size_t>(written));
    }
}

// A rename lasts only once the directory is on the disk.
void syncDirectory(const Path &directory) {
    const File handle(directory, O_RDONLY | O_DIRECTORY);
    if (handle.isOpen())
        ::fsync(handle.fd());
}

} // namespace

Path pathFromUtf8(std::string_view text) {
    return Path(text);
}
std::string utf8FromPath(const Path &path) {
    return path.string();
}

std::optional<std::string> environment(const char *name) {
    const char *value = std::getenv(name);
    if (value == nullptr || *value == '\0')
        return std::nullopt;
    return std::string(value);
}

std::optional<Path> userTokenDirectory() {
    if (const auto data = environment("XDG_DATA_HOME"))
        return Path(*data) / "tembra-soft-token";
    if (const auto home = environment("HOME"))
        return Path(*home) / ".local" / "share" / "tembra-soft-token";
    return std::nullopt;
}

void makePrivateDirectory(const Path &directory) {
    if (std::filesystem::is_directory(directory))
        return;
    if (directory.has_parent_path())
        std::filesystem::create_directories(directory.parent_path());
    if (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST)
        fail("mkdir");
}

std::optional<std::string> readFile(const Path &file, std::size_t limit) {
    const File handle(file, O_RDONLY);
    if (!handle.isOpen()) {
        if (errno == ENOENT || errno == ENOTDIR)
            return std::nullopt;
        fail("open");
    }
    std::string content;
    char piece[16384];
    while (content.size() < limit) {
        const ssize_t got =
            ::read(handle.fd(), piece, std::min(sizeof piece, limit - content.size()));
        if (got < 0 && errno != EINTR)
            fail("read");
        if (got == 0)
            break;
        if (got > 0)
            content.append(piece, static_cast<std::size_t>(got));
    }
    return content;
}

void replaceFile(const Path &file, std::string_view content) {
    Path temporary = file;
    temporary += ".tmp";
    {
        const File handle(temporary, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
        if (!handle.isOpen())
            fail("open");
        writeAll(handle.fd(), content);
        if (::fsync(handle.fd()) != 0)
            fail("fsync");
    }
    if (::rename(temporary.c_str(), file.c_str()) != 0)
        fail("rename");
    syncDirectory(file.parent_path());
}

void removeFile(const Path &file) {
    if (::unlink(file.c_str()) != 0 && errno != ENOENT)
        fail("unlink");
}

} // namespace tembra::token::store
