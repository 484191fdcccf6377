// The registry, or the file that stands in for it off Windows.
//
// Off Windows the environment variable TEMBRA_KEY_PROV_REGISTRY names a text file in the form that
// Windows' registry editor exports; unset, it is /etc/tembra_key_prov.reg.
#pragma once

#include <cstdint>

namespace tembra::platform {

inline constexpr std::uint32_t REGISTRY_TYPE_DWORD = 4; // REG_DWORD

// What opening the key and querying the value answered; system error numbers, 0 for success.
struct RegistryAnswer {
    int openResult;
    int queryResult;    // meaningful when the key could be opened
    std::uint32_t type; // meaningful when the query succeeded
    std::uint32_t data; // the first four bytes, little-endian
};

// Opens HKEY_LOCAL_MACHINE\subkey for reading, queries one value into 8 bytes and closes the key.
// Both names are ASCII.
RegistryAnswer queryRegistryValue(const char *subkey, const char *name);

} // namespace tembra::platform
