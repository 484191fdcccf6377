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

} // namespace

DynamicLibrary::~DynamicLibrary() {
    if (handle_ != nullptr)
        FreeLibrary(static_cast<HMODULE>(handle_));
}

std::string DynamicLibrary::open(const std::string &path) {
    const std::wstring absolute = std::filesystem::absolute(widen(path)).wstring();
    handle_ = LoadLibraryExW(absolute.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    return handle_ == nullptr ? errorText(GetLastError()) : std::string();
}

void *DynamicLibrary::symbol(const char *name) const {
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

} // namespace tembra::tool::platform
