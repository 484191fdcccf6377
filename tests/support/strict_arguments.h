// Accesses the arguments of a library call as far as a real library may: every input to its length,
// every output to its capacity. AddressSanitizer then detects a wrong length.
#pragma once

#include "platform/skf.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

namespace tembra::test {

inline void reach(const void *data, std::size_t size) {
    static std::vector<unsigned char> copy; // one copy, which the sanitizer checks as a whole
    if (data == nullptr || size == 0)
        return;
    copy.resize(size);
    std::memcpy(copy.data(), data, size);
}

inline void reach(const ECCCIPHERBLOB *blob) {
    reach(blob, offsetof(ECCCIPHERBLOB, Cipher));
    reach(blob->Cipher, blob->CipherLen);
}

inline void reach(const ENVELOPEDKEYBLOB *blob) {
    reach(blob, offsetof(ENVELOPEDKEYBLOB, ECCCipherBlob));
    reach(&blob->ECCCipherBlob);
}

// Handles the first of these arguments; bytes are followed by a length or a pointer to a capacity.
template <typename First, typename... Rest>
void reachFirst(std::string_view function, First first, Rest... rest) {
    using Next = std::tuple_element_t<0, std::tuple<Rest..., void>>;
    constexpr bool isText = std::is_same_v<First, LPSTR>;
    if constexpr (std::is_same_v<First, ECCCIPHERBLOB *> ||
                  std::is_same_v<First, ENVELOPEDKEYBLOB *>) {
        reach(first);
    } else if constexpr (isText || std::is_convertible_v<First, const unsigned char *>) {
        if (first == nullptr || function == "SKF_SetSymmKey") // an algorithm follows the key
            return;
        if (isText && !function.starts_with("SKF_Enum"))
            reach(first, std::strlen(reinterpret_cast<const char *>(first)) + 1);
        else if constexpr (std::is_same_v<Next, ULONG> || std::is_same_v<Next, int>)
            // A length below zero comes from the host library itself, for a block of its own.
            reach(first, static_cast<std::size_t>(
                             std::max<std::int64_t>(std::get<0>(std::tuple(rest...)), 0)));
        else if constexpr (std::is_same_v<Next, ULONG *>)
            reach(first, *std::get<0>(std::tuple(rest...)));
    }
}

inline void reachArguments(std::string_view) {}
template <typename First, typename... Rest>
void reachArguments(std::string_view function, First first, Rest... rest) {
    reachFirst(function, first, rest...);
    reachArguments(function, rest...);
}

} // namespace tembra::test
