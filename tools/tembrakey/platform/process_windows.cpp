#include "tembrakey/platform/process.h"

#include "tembrakey/platform/wide_text.h"

#include <cstdlib>
#include <windows.h>

#include <shellapi.h>

namespace tembra::tool::platform {

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

std::string executablePath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return narrow(path);
}

std::string executableFolder() {
    const std::string path = executablePath();
    const auto end = path.find_last_of("\\/");
    return end == std::string::npos ? std::string() : path.substr(0, end);
}

bool systemSpeaksChinese() {
    return PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_CHINESE;
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
