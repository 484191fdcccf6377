// Text from tokens, certificates and files, made safe for terminals.
#pragma once

#include <string>
#include <string_view>

namespace tembra::tool {

// Control characters, which could steer a terminal, become \xNN.
std::string printable(std::string_view text);

} // namespace tembra::tool
