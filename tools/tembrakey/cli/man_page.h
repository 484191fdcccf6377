// The manual page, from the tool's own help.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace tembra::tool {

// In the language chosen, for man(1).
std::string manPage(const CLI::App &app);

} // namespace tembra::tool
