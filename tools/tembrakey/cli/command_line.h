// From the command line to a command that runs.
#pragma once

#include <string>
#include <vector>

namespace tembra::tool {

// Parses the arguments (UTF-8, without the program's name), runs the command they name and reports
// how it ended. Returns the exit code.
int runCommandLine(std::vector<std::string> arguments);

} // namespace tembra::tool
