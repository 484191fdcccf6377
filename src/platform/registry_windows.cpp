#include "platform/registry.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace tembra::platform {

namespace {

constexpr std::size_t NAME_CAPACITY = 128;

// The names are ASCII, so widening is a copy.
void widen(const char *text, wchar_t (&wide)[NAME_CAPACITY]) {
    std::size_t i = 0;
    for (; text[i] != '\0' && i + 1 < NAME_CAPACITY; ++i)
        wide[i] = static_cast<wchar_t>(text[i]);
    wide[i] = L'\0';
}

} // namespace

RegistryAnswer queryRegistryValue(const char *subkey, const char *name) {
    wchar_t wideSubkey[NAME_CAPACITY];
    wchar_t wideName[NAME_CAPACITY];
    widen(subkey, wideSubkey);
    widen(name, wideName);

    RegistryAnswer answer = {};
    HKEY key = nullptr;
    answer.openResult =
        static_cast<int>(RegOpenKeyExW(HKEY_LOCAL_MACHINE, wideSubkey, 0, KEY_READ, &key));
    if (answer.openResult != ERROR_SUCCESS)
        return answer;

    DWORD data[2] = {};
    DWORD size = sizeof(data);
    DWORD type = 0;
    answer.queryResult = static_cast<int>(
        RegQueryValueExW(key, wideName, nullptr, &type, reinterpret_cast<BYTE *>(data), &size));
    answer.type = type;
    answer.data = data[0];
    RegCloseKey(key);
    return answer;
}

} // namespace tembra::platform
