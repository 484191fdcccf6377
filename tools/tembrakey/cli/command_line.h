// From the command line to a command that runs.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace tembra::tool {

struct CommandEntry;

// Runs the command that the arguments (UTF-8, without the program's name) name, and reports
// failures. Returns the exit code.
int runCommandLine(std::vector<std::string> arguments, std::span<const CommandEntry *const> table);

} // namespace tembra::tool
