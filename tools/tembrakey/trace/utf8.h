// UTF-8 of unknown quality.
#pragma once

#include <string>
#include <string_view>

namespace tembra::trace {

// Takes the first character off the text, which is not empty; the replacement character for a byte
// that begins none.
std::string_view takeCharacter(std::string_view &text);

// As it is, except that control characters, which could steer a terminal, show as \xNN.
std::string printable(std::string_view text);

} // namespace tembra::trace
