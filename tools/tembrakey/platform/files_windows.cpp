#include "tembrakey/platform/files.h"

#include "tembrakey/platform/wide_text.h"

#include <cerrno>
#include <ctime>
#include <io.h>
#include <sys/stat.h>
#include <vector>
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

std::string fileVersion(const std::string &path) {
    const std::wstring wide = widen(path);
    std::vector<char> resource(GetFileVersionInfoSizeW(wide.c_str(), nullptr));
    void *found = nullptr;
    UINT length = 0;
    if (resource.empty() ||
        !GetFileVersionInfoW(wide.c_str(), 0, static_cast<DWORD>(resource.size()),
                             resource.data()) ||
        !VerQueryValueW(resource.data(), L"\\", &found, &length) ||
        length < sizeof(VS_FIXEDFILEINFO))
        return {};
    const auto *info = static_cast<const VS_FIXEDFILEINFO *>(found);
    return std::to_string(HIWORD(info->dwFileVersionMS)) + "." +
           std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
           std::to_string(HIWORD(info->dwFileVersionLS));
}

std::string fileDate(const std::string &path) {
    struct _stat64 status = {};
    struct tm day = {};
    char text[16];
    if (_wstat64(widen(path).c_str(), &status) != 0 || _localtime64_s(&day, &status.st_mtime) != 0)
        return {};
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d", &day));
}

FileState fileState(const std::string &path) {
    struct _stat64 status = {};
    FileState state;
    state.exists = _wstat64(widen(path).c_str(), &status) == 0;
    const auto slash = path.find_last_of("/\\");
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    state.isWritable = _waccess(widen(state.exists ? path : folder).c_str(), 2) == 0;
    if (state.exists) {
        state.isRegular = (status.st_mode & _S_IFMT) == _S_IFREG;
        state.size = status.st_size;
    }
    return state;
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
