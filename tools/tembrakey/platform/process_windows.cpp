#include "tembrakey/platform/process.h"

#include "tembrakey/platform/wide_text.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

namespace tembra::tool::platform {

namespace {

UINT outputPageBefore = 0;

void restoreConsole() {
    SetConsoleOutputCP(outputPageBefore);
}

} // namespace

std::vector<std::string> arguments(int, char **) {
    int count = 0;
    wchar_t **wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; wide != nullptr && i < count; ++i)
        result.push_back(narrow(wide[i]));
    LocalFree(wide);
    return result;
}

std::optional<std::string> environment(const std::string &name) {
    const wchar_t *value = _wgetenv(widen(name).c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(narrow(value));
}

std::string executableFolder() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    const auto end = path.find_last_of(L"\\/");
    return end == std::wstring::npos ? std::string() : narrow(path.substr(0, end));
}

bool systemSpeaksChinese() {
    return PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_CHINESE;
}

void prepareStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    outputPageBefore = GetConsoleOutputCP();
    if (outputPageBefore != 0 && SetConsoleOutputCP(CP_UTF8))
        std::atexit(restoreConsole);
}

std::string settingsPlace() {
    return "HKEY_LOCAL_MACHINE\\Software\\ORVEL\\PKI\\Devices\\TembraKey";
}

bool settingsPlaceExists() {
    HKEY key = nullptr;
    const LSTATUS result = RegOpenKeyExW(
        HKEY_LOCAL_MACHINE, L"Software\\ORVEL\\PKI\\Devices\\TembraKey", 0, KEY_READ, &key);
    if (result == ERROR_SUCCESS)
        RegCloseKey(key);
    return result == ERROR_SUCCESS;
}

std::string libraryFileName(const std::string &name) {
    return name + ".dll";
}

} // namespace tembra::tool::platform
