// The manual page, from the tool's own help.
#pragma once

#include <span>
#include <string>

namespace CLI {
class App;
}

namespace tembra::tool {

struct CommandEntry;

// In the language chosen, for man(1).
std::string manPage(const CLI::App &app, std::span<const CommandEntry *const> table);

} // namespace tembra::tool
