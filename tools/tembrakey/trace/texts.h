// Texts for people, in the language that the program shows.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace tembra::trace {

// Gives the translation of an English text, or the text itself.
using Translate = const char *(*)(const char *english);

// The text with {1}, {2} ... replaced by the values.
std::string fill(std::string_view text, std::initializer_list<std::string_view> values);

// 1204113 -> "1 204 113"
std::string grouped(std::uint64_t number);

} // namespace tembra::trace
