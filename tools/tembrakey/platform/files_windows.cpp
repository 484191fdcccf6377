#include "tembrakey/platform/files.h"

#include "tembrakey/platform/wide_text.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <vector>
#include <windows.h>

namespace tembra::tool::platform {

const bool HAS_FILE_MODES = false;

namespace {

std::wstring interruptedFile;

// Runs in a thread of its own; the system ends the process afterwards.
BOOL WINAPI removeInterrupted(DWORD) {
    if (!interruptedFile.empty())
        DeleteFileW(interruptedFile.c_str());
    return FALSE;
}

} // namespace

std::FILE *openFile(const std::string &path, const char *mode) {
    return _wfopen(widen(path).c_str(), widen(mode).c_str());
}

std::FILE *createFile(const std::string &path, bool) {
    // Shared for deletion, so that an interrupt can remove the file while it is open.
    const HANDLE file =
        CreateFileW(widen(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                    nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        errno = GetLastError() == ERROR_PATH_NOT_FOUND ? ENOENT : EACCES;
        return nullptr;
    }
    return _fdopen(_open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY), "wb");
}

void removeOnInterrupt(const std::string &path) {
    SetConsoleCtrlHandler(removeInterrupted, FALSE);
    interruptedFile = widen(path);
    if (!path.empty())
        SetConsoleCtrlHandler(removeInterrupted, TRUE);
}

void removeOpenFile(const std::string &path) {
    // The system removes only closed files: find its descriptor, which libraries share with us.
    const std::wstring name = toPath(path).filename().wstring();
    for (int number = 3; number < 512; ++number) {
        wchar_t open[1024];
        const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(number));
        const DWORD length = GetFinalPathNameByHandleW(handle, open, 1024, 0);
        if (length > 0 && length < 1024 && std::wstring_view(open, length).ends_with(name))
            _close(number);
    }
    _wremove(widen(path).c_str());
}

long long position(std::FILE *stream) {
    return _ftelli64(stream);
}

bool isReadable(const std::string &path) {
    return _waccess(widen(path).c_str(), 4) == 0;
}

bool isWritable(const std::string &path) {
    return _waccess(widen(path).c_str(), 2) == 0;
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

std::string processNumber() {
    return std::to_string(GetCurrentProcessId());
}

} // namespace tembra::tool::platform
