// The Windows registry. Other systems read a text file in the format of the Windows registry
// editor, /etc/tembra_key_prov.reg or the one that the variable TEMBRA_KEY_PROV_REGISTRY names.
#pragma once

#include <cstdint>

namespace tembra::platform {

inline constexpr std::uint32_t REGISTRY_TYPE_DWORD = 4; // REG_DWORD

// The results are system error numbers, 0 for success.
struct RegistryAnswer {
    int openResult;
    int queryResult;    // valid if the key could be opened
    std::uint32_t type; // valid if the query succeeded
    std::uint32_t data; // the first four bytes, little-endian
};

// Opens HKEY_LOCAL_MACHINE\subkey for reading, queries one value into 8 bytes and closes the key.
// Both names are ASCII.
RegistryAnswer queryRegistryValue(const char *subkey, const char *name);

} // namespace tembra::platform
