// The command line as a tree of commands, for what follows from it.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tembra::tool {

struct CommandEntry;

std::vector<const CLI::App *> children(const CLI::App &app);
const CLI::App *findChild(const CLI::App &app, const std::string &name); // null if there is none

const CLI::App &commandOf(const CLI::App &app, const CommandEntry &entry);

// "tembrakey key generate"
std::string fullName(const CLI::App &app);

// After parsing: the tool itself and the commands named, the innermost one last.
std::vector<const CLI::App *> commandsNamed(const CLI::App &app);

// "-o", "--out"; none of a positional argument.
std::vector<std::string> optionNames(const CLI::Option &option);
// "FILE" or "sm2|rsa"; empty for a flag.
std::string valueName(const CLI::Option &option);
bool isFlag(const CLI::Option &option);

// What pages list of a command: first the positional arguments, then the options, without --help.
std::vector<const CLI::Option *> listedOptions(const CLI::App &app);

} // namespace tembra::tool
