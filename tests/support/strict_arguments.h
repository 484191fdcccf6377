// What a token and a host library do with their arguments at the least: they read every input as
// far as its length says and reach every output to the end of its capacity. A wrong length is thus
// seen by AddressSanitizer, whatever the function then answers.
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
    static std::vector<unsigned char> copy; // the sanitizer looks at a whole copy in one go
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

// The first of these arguments; a length, or a pointer to a capacity, follows bytes.
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
            // A length below zero is one that the host library gave of a block of its own.
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
