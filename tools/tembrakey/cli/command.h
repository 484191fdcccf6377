// One command of the tool.
#pragma once

#include <memory>
#include <string>

#include "tembrakey/cli/arguments.h"
#include "tembrakey/io/console.h"

namespace CLI {
class App;
}

namespace tembra::tool {

// What holds for every command.
struct Context {
    Console console;
    std::string provider; // path given by --provider, or empty
    std::string device;   // --device: serial number or index, or empty
    const CLI::App *app;  // the whole command line, for commands that describe it
};

// An object lives for one run of the tool: its members are the arguments' targets.
class Command {
public:
    virtual ~Command() = default;
    virtual void describe(Arguments &arguments) = 0;
    // Throws Failure.
    virtual void run(Context &context) = 0;
};

// A row of the table of commands. Texts are English and are translated where they are shown.
struct CommandEntry {
    const char *name;     // "sign", "key generate"
    const char *summary;  // one line
    const char *about;    // what else one should know; may be empty
    const char *examples; // command lines
    std::unique_ptr<Command> (*make)();
};

template <typename C>
std::unique_ptr<Command> make() {
    return std::make_unique<C>();
}

} // namespace tembra::tool
