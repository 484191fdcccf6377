#include "file_system.h"

#include <algorithm>
#include <system_error>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace tembra::token::store {

namespace {

class File {
public:
    File(const Path &path, DWORD access, DWORD disposition)
        : m_handle(::CreateFileW(path.c_str(), access,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                 disposition, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    ~File() {
        if (isOpen())
            ::CloseHandle(m_handle);
    }
    HANDLE handle() const { return m_handle; }
    bool isOpen() const { return m_handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE m_handle;
};

[[noreturn]] void fail(DWORD error, const char *what) {
    throw std::system_error(static_cast<int>(error), std::system_category(), what);
}

// A file that somebody is replacing or reading just now is refused for a moment (virus scanners do
// the same for a little longer).
bool isPassing(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
           error == ERROR_LOCK_VIOLATION || error == ERROR_USER_MAPPED_FILE;
}

constexpr int maxTries = 1000; // about two seconds

// Repeats `action`, which answers 0 or an error, while the error is a passing one.
template <typename Action>
DWORD withPatience(Action action) {
    DWORD error = action();
    for (int tries = 1; isPassing(error) && tries < maxTries; ++tries) {
        ::Sleep(tries < 20 ? 0 : 2);
        error = action();
    }
    return error;
}

std::string utf8(const std::wstring &text) {
    const int length = static_cast<int>(text.size());
    const int size =
        ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, out.data(), size, nullptr, nullptr);
    return out;
}

DWORD readOnce(const Path &file, std::size_t limit, std::string &content) {
    const File handle(file, GENERIC_READ, OPEN_EXISTING);
    if (!handle.isOpen())
        return ::GetLastError();
    content.clear();
    char piece[16384];
    while (content.size() < limit) {
        DWORD got = 0;
        const auto wanted = static_cast<DWORD>(std::min(sizeof piece, limit - content.size()));
        if (!::ReadFile(handle.handle(), piece, wanted, &got, nullptr))
            return ::GetLastError();
        if (got == 0)
            break;
        content.append(piece, got);
    }
    return 0;
}

DWORD writeOnce(const Path &file, std::string_view content) {
    const File handle(file, GENERIC_WRITE, CREATE_ALWAYS);
    if (!handle.isOpen())
        return ::GetLastError();
    while (!content.empty()) {
        DWORD written = 0;
        const auto wanted =
            static_cast<DWORD>(std::min<std::size_t>(content.size(), std::size_t{1} << 20));
        if (!::WriteFile(handle.handle(), content.data(), wanted, &written, nullptr))
            return ::GetLastError();
        content.remove_prefix(written);
    }
    return ::FlushFileBuffers(handle.handle()) ? 0 : ::GetLastError();
}

} // namespace

Path pathFromUtf8(std::string_view text) {
    return Path(std::u8string(text.begin(), text.end()));
}
std::string utf8FromPath(const Path &path) {
    return utf8(path.wstring());
}

std::optional<std::string> environment(const char *name) {
    const std::wstring wideName(name, name + std::char_traits<char>::length(name));
    std::wstring value(32767, L'\0');
    const DWORD length =
        ::GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (length == 0 || length >= value.size())
        return std::nullopt;
    value.resize(length);
    return utf8(value);
}

std::optional<Path> userTokenDirectory() {
    if (const auto data = environment("LOCALAPPDATA"))
        return pathFromUtf8(*data) / "TembraSoftToken";
    return std::nullopt;
}

// The user's data directory is closed to other users already, and so is what is made in it.
void makePrivateDirectory(const Path &directory) {
    std::filesystem::create_directories(directory);
}

std::optional<std::string> readFile(const Path &file, std::size_t limit) {
    std::string content;
    const DWORD error = withPatience([&] { return readOnce(file, limit, content); });
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)
        return std::nullopt;
    if (error != 0)
        fail(error, "read");
    return content;
}

void replaceFile(const Path &file, std::string_view content) {
    Path temporary = file;
    temporary += ".tmp";
    if (const DWORD error = withPatience([&] { return writeOnce(temporary, content); }))
        fail(error, "write");
    const DWORD error = withPatience([&] {
        return ::MoveFileExW(temporary.c_str(), file.c_str(),
                             MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)
                   ? DWORD{0}
                   : ::GetLastError();
    });
    if (error != 0)
        fail(error, "rename");
}

void removeFile(const Path &file) {
    const DWORD error =
        withPatience([&] { return ::DeleteFileW(file.c_str()) ? DWORD{0} : ::GetLastError(); });
    if (error != 0 && error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND)
        fail(error, "remove");
}

} // namespace tembra::token::store
