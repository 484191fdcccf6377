// The provider's entry points and their arguments.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace tembra::trace {

bool isEntryPoint(std::string_view name);

// "hDevice = 0x55, int type = 1" as names and values, as far as the message has arguments of the
// entry point. Values may contain any characters.
using Arguments = std::vector<std::pair<std::string_view, std::string_view>>;
Arguments readArguments(std::string_view entryPoint, std::string_view message);

} // namespace tembra::trace
