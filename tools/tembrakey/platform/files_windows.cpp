#include "tembrakey/platform/files.h"

#include "tembrakey/platform/wide_text.h"

#include <cerrno>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

namespace tembra::tool::platform {

std::FILE *openFile(const std::string &path, const char *mode) {
    return _wfopen(widen(path).c_str(), widen(mode).c_str());
}

long long position(std::FILE *stream) {
    return _ftelli64(stream);
}

bool isReadable(const std::string &path) {
    return _waccess(widen(path).c_str(), 4) == 0;
}

bool isSpecialFile(const std::string &path) {
    struct _stat64 status = {};
    return _wstat64(widen(path).c_str(), &status) == 0 && (status.st_mode & _S_IFMT) != _S_IFREG;
}

bool replaceFile(const std::string &from, const std::string &to) {
    if (MoveFileExW(widen(from).c_str(), widen(to).c_str(), MOVEFILE_REPLACE_EXISTING))
        return true;
    errno = EACCES;
    return false;
}

void removeFile(const std::string &path) {
    _wremove(widen(path).c_str());
}

std::string processNumber() {
    return std::to_string(GetCurrentProcessId());
}

int readDescriptor(int descriptor, char *bytes, unsigned count) {
    return _read(descriptor, bytes, count);
}

} // namespace tembra::tool::platform
