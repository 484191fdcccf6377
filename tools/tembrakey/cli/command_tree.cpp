#include "tembrakey/cli/command_tree.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "tembrakey/cli/command.h"

namespace tembra::tool {

std::vector<const CLI::App *> children(const CLI::App &app) {
    return app.get_subcommands([](const CLI::App *) { return true; });
}

const CLI::App *findChild(const CLI::App &app, const std::string &name) {
    for (const CLI::App *child : children(app))
        if (child->get_name() == name)
            return child;
    return nullptr;
}

const CLI::App &commandOf(const CLI::App &app, const CommandEntry &entry) {
    const CLI::App *command = &app;
    for (const std::string &word : CLI::detail::split(entry.name, ' '))
        command = findChild(*command, word);
    return *command;
}

std::string fullName(const CLI::App &app) {
    const CLI::App *parent = app.get_parent();
    return parent == nullptr ? app.get_name() : fullName(*parent) + " " + app.get_name();
}

std::vector<const CLI::App *> commandsNamed(const CLI::App &app) {
    std::vector<const CLI::App *> commands = {&app};
    while (!commands.back()->get_subcommands().empty())
        commands.push_back(commands.back()->get_subcommands().front());
    return commands;
}

std::vector<std::string> optionNames(const CLI::Option &option) {
    std::vector<std::string> names;
    for (const std::string &name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string &name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

std::string valueName(const CLI::Option &option) {
    const std::string name = option.get_type_name();
    return name.empty() && option.get_positional() ? option.get_name(true) : name;
}

bool isFlag(const CLI::Option &option) {
    return option.get_expected_max() == 0;
}

std::vector<const CLI::Option *> listedOptions(const CLI::App &app) {
    auto options =
        app.get_options([&](const CLI::Option *option) { return option != app.get_help_ptr(); });
    std::stable_partition(options.begin(), options.end(),
                          [](const CLI::Option *option) { return option->get_positional(); });
    return options;
}

} // namespace tembra::tool
