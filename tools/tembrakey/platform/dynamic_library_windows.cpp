#include "tembrakey/platform/dynamic_library.h"

#include "tembrakey/platform/wide_text.h"

#include <filesystem>
#include <windows.h>

namespace tembra::tool::platform {

namespace {

std::string errorText(DWORD error) {
    wchar_t text[512];
    const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    DWORD length = FormatMessageW(flags, nullptr, error, 0, text, 512, nullptr);
    while (length > 0 && (text[length - 1] == L'\n' || text[length - 1] == L'\r'))
        --length;
    return narrow(std::wstring(text, length)) + " (" + std::to_string(error) + ")";
}

// The system's folders and PATH. The folder of this program, where the system would look first, is
// not one that other programs' libraries are found in.
std::wstring findOutsideOurFolder(const std::wstring &name) {
    std::wstring folders(MAX_PATH, L'\0');
    folders.resize(GetSystemDirectoryW(folders.data(), MAX_PATH));
    const wchar_t *path = _wgetenv(L"PATH");
    folders += L";" + std::wstring(path == nullptr ? L"" : path);
    std::wstring found(32768, L'\0');
    found.resize(SearchPathW(folders.c_str(), name.c_str(), nullptr,
                             static_cast<DWORD>(found.size()), found.data(), nullptr));
    return found;
}

} // namespace

DynamicLibrary::~DynamicLibrary() {
    if (m_handle != nullptr)
        FreeLibrary(static_cast<HMODULE>(m_handle));
}

std::string DynamicLibrary::open(const std::string &path) {
    const std::wstring absolute = std::filesystem::absolute(widen(path)).wstring();
    m_handle = LoadLibraryExW(absolute.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    return m_handle == nullptr ? errorText(GetLastError()) : std::string();
}

std::string DynamicLibrary::openNamed(const std::string &fileName) {
    const std::wstring name = widen(fileName);
    std::wstring found = name; // when it is loaded already
    if (GetModuleHandleW(name.c_str()) == nullptr)
        found = findOutsideOurFolder(name);
    m_handle = found.empty() ? nullptr : LoadLibraryW(found.c_str());
    if (m_handle != nullptr)
        return {};
    return errorText(found.empty() ? ERROR_MOD_NOT_FOUND : GetLastError());
}

std::string DynamicLibrary::path() const {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(static_cast<HMODULE>(m_handle), path.data(),
                                   static_cast<DWORD>(path.size())));
    return narrow(path);
}

void *DynamicLibrary::symbol(const char *name) const {
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(m_handle), name));
}

} // namespace tembra::tool::platform
