// Completion of the command line by shells, from the tool's own help.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace tembra::tool {

// A script for each shell. Descriptions, which bash does not show, are in the current language.
std::string bashCompletion(const CLI::App &app);
std::string zshCompletion(const CLI::App &app);
std::string fishCompletion(const CLI::App &app);

} // namespace tembra::tool
