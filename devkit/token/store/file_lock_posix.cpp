#include "file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tembra::token::store {

namespace {

// A lock on a file that has been removed excludes no other process.
bool isFileAt(int fd, const Path &file) {
    struct stat mine = {};
    struct stat there = {};
    return ::fstat(fd, &mine) == 0 && ::stat(file.c_str(), &there) == 0 &&
           mine.st_ino == there.st_ino && mine.st_dev == there.st_dev;
}

} // namespace

std::optional<FileLock> FileLock::tryAcquire(const Path &file) {
    for (;;) {
        const int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (fd < 0)
            throwFileError();
        FileLock lock(fd);
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0)
            return std::nullopt;
        if (isFileAt(fd, file))
            return lock;
    }
}

FileLock::~FileLock() {
    if (m_handle != NONE)
        ::close(static_cast<int>(m_handle));
}

void FileLock::releaseAndRemove(FileLock lock, const Path &file) {
    (void)lock; // still held: a waiting process finds that its file has been removed
    ::unlink(file.c_str());
}

} // namespace tembra::token::store
