// Completion of the command line by bash, from the tool's own help.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace tembra::tool {

std::string bashCompletion(const CLI::App &app);

} // namespace tembra::tool
