// The command line as a tree, for what is generated from it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace tembra::tool {

inline std::vector<const CLI::App *> children(const CLI::App &app) {
    return app.get_subcommands([](const CLI::App *) { return true; });
}

// Calls visit with every command and its full name, "tembrakey key generate", groups before what is
// in them.
inline void
forEachCommand(const CLI::App &app, const std::string &name,
               const std::function<void(const CLI::App &, const std::string &)> &visit) {
    visit(app, name);
    for (const CLI::App *child : children(app))
        forEachCommand(*child, name + " " + child->get_name(), visit);
}

} // namespace tembra::tool
