// One command of the tool.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "tembrakey/cli/arguments.h"
#include "tembrakey/io/console.h"

namespace CLI {
class App;
}

namespace tembra::tool {

struct CommandEntry;

// What every command is given.
struct Context {
    Console console;
    std::string provider; // path given by --provider, or empty
    std::string device;   // --device: serial number or index, or empty
    // The whole command line, for commands that describe it.
    const CLI::App &app;
    std::span<const CommandEntry *const> table;
};

// An object lives for one run of the tool; its members are the targets of the arguments.
class Command {
public:
    virtual ~Command() = default;
    virtual void describe(Arguments &arguments) = 0;
    // Throws Failure.
    virtual void run(Context &context) = 0;
};

// A row of the table of commands, in English; texts are translated where they are shown.
struct CommandEntry {
    const char *name;     // "sign", "key generate"
    const char *summary;  // one line
    const char *about;    // more about the command; may be empty
    const char *examples; // command lines
    std::unique_ptr<Command> (*make)();
};

template <typename C>
std::unique_ptr<Command> make() {
    return std::make_unique<C>();
}

} // namespace tembra::tool
