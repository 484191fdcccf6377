#include "tembrakey/cli/completion_words.h"

#include <algorithm>

#include "tembrakey/cli/command_tree.h"

namespace tembra::tool {

namespace {

ValueKind kindOf(const CLI::Option &option, const std::string &value) {
    if (value.empty())
        return ValueKind::none;
    if (value == "FILE" || value == "OUT" || value == "PATH")
        return ValueKind::file;
    if (option.get_name().ends_with("-env"))
        return ValueKind::variable;
    const bool isChoice = value.find('|') != value.npos && value != "INDEX|SERIAL";
    return isChoice ? ValueKind::choice : ValueKind::unknown;
}

OptionWords wordsOf(const CLI::Option &option) {
    OptionWords words;
    for (const std::string &name : option.get_snames())
        words.names.push_back("-" + name);
    for (const std::string &name : option.get_lnames())
        words.names.push_back("--" + name);
    words.help = option.get_description();
    words.value = option.get_type_name();
    if (words.value.empty() && option.get_positional())
        words.value = option.get_name(true);
    words.kind = kindOf(option, words.value);
    if (words.kind == ValueKind::choice)
        std::replace(words.value.begin(), words.value.end(), '|', ' ');
    return words;
}

} // namespace

std::vector<CommandWords> completionWords(const CLI::App &app) {
    std::vector<CommandWords> commands;
    forEachCommand(app, "tembrakey", [&](const CLI::App &one, const std::string &name) {
        CommandWords words = {name, {}, {}};
        for (const CLI::App *child : children(one))
            words.subcommands.emplace_back(child->get_name(), child->get_description());
        const bool isTool = one.get_parent() == nullptr;
        for (const CLI::Option *option : one.get_options())
            if (isTool || option != one.get_help_ptr()) // the tool's holds for all
                words.options.push_back(wordsOf(*option));
        commands.push_back(std::move(words));
    });
    return commands;
}

std::string quotedNames(const std::vector<CommandWords> &commands, const std::string &separator) {
    std::string names;
    for (std::size_t i = 1; i < commands.size(); ++i)
        names += (names.empty() ? "'" : separator + "'") + commands[i].name + "'";
    return names;
}

std::string escaped(const std::string &text, const std::string &characters) {
    std::string result;
    for (const char c : text) {
        if (characters.find(c) != characters.npos)
            result += '\\';
        result += c;
    }
    return result;
}

} // namespace tembra::tool
