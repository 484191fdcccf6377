// What the shells complete, taken from the command line once for all of them.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
}

namespace tembra::tool {

enum class ValueKind { none, file, variable, choice, unknown };

struct OptionWords {
    std::vector<std::string> names; // "-l", "--label"; none for what stands by its place
    std::string help;
    ValueKind kind;
    std::string value; // its name, or the choices with blanks between them
};

struct CommandWords {
    std::string name;                                             // "tembrakey key generate"
    std::vector<std::pair<std::string, std::string>> subcommands; // with what they are for
    std::vector<OptionWords> options; // of which those of the first command hold for all
};

// The tool itself first, groups before what is in them.
std::vector<CommandWords> completionWords(const CLI::App &app);

// The names of all commands but the tool, quoted for a shell.
std::string quotedNames(const std::vector<CommandWords> &commands, const std::string &separator);

// The text with a backslash before each of these characters.
std::string escaped(const std::string &text, const std::string &characters);

} // namespace tembra::tool
