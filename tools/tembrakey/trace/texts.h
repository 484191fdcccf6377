// Texts for people, in the language of the program.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "tembrakey/text/printable.h"

namespace tembra::trace {

// Returns the translation of an English text with {1}, {2} ... replaced by the values.
using Translate = std::string (*)(const char *english, std::initializer_list<std::string_view>);

// 1204113 -> "1 204 113"
inline std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t end = digits.size(); end > 3; end -= 3)
        digits.insert(end - 3, 1, ' ');
    return digits;
}

using tool::printable;

} // namespace tembra::trace
