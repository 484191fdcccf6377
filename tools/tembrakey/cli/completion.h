// Completion: the shells' scripts ask this program what may come next.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tembra::tool {

// The command of the child process that lists devices, as `list --json` does.
extern const char *const DEVICES_WORD;

// Prints what the last one of these words, which may be empty, can become: a line for each
// candidate, with a tab and its description, or ":files" where files are expected.
void printCandidates(const CLI::App &app, std::vector<std::string> words);

} // namespace tembra::tool
