#include "tembrakey/cli/usage_error.h"

#include <functional>
#include <vector>

#include <CLI/CLI.hpp>

#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

// From the tool itself to the innermost command named.
std::vector<const CLI::App *> commandsNamed(const CLI::App &app) {
    std::vector<const CLI::App *> commands = {&app};
    while (!commands.back()->get_subcommands().empty())
        commands.push_back(commands.back()->get_subcommands().front());
    return commands;
}

// The first option or argument of a command named for which this holds, or null.
const CLI::Option *find(const CLI::App &app,
                        const std::function<bool(const CLI::Option &)> &predicate) {
    for (const CLI::App *command : commandsNamed(app)) {
        for (const CLI::Option *option : command->get_options())
            if (predicate(*option))
                return option;
    }
    return nullptr;
}

// Without a value, which may be a PIN put in the wrong place.
std::string optionIn(const std::string &word) {
    return word.substr(0, word.find('='));
}

std::string unknownWord(const CLI::App &command, const std::string &word) {
    if (word.size() > 1 && word[0] == '-')
        return tr("There is no option {1} here", {optionIn(word)});
    if (command.get_require_subcommand_min() > 0)
        return tr("There is no subcommand {1} here", {word});
    return tr("{1} is one argument too many", {word});
}

std::string missing(const CLI::App &app) {
    const CLI::Option *option =
        find(app, [](const CLI::Option &one) { return one.get_required() && one.count() == 0; });
    return option == nullptr ? tr("A subcommand is required")
                             : tr("{1} is required", {option->get_name()});
}

const CLI::Option *givenRival(const CLI::Option &option) {
    for (const CLI::Option *rival : option.get_excludes())
        if (option.count() > 0 && rival->count() > 0)
            return rival;
    return nullptr;
}

std::string notTogether(const CLI::App &app) {
    const CLI::Option *option = find(app, givenRival);
    return tr("{1} cannot stand with {2}", {option->get_name(), givenRival(*option)->get_name()});
}

bool isFlag(const CLI::Option &option) {
    return option.get_expected_max() == 0;
}

std::string wrongCount(const CLI::App &app, const std::string &lastWord) {
    const CLI::Option *option =
        find(app, [](const CLI::Option &one) { return !isFlag(one) && one.count() > 1; });
    return option == nullptr ? tr("{1} needs a value", {optionIn(lastWord)})
                             : tr("{1} may be given only once", {option->get_name()});
}

std::string flagWithValue(const CLI::App &app) {
    const CLI::Option *option = find(app, [](const CLI::Option &one) {
        return isFlag(one) && one.count() > 0 && one.results().back() != "true";
    });
    return tr("{1} takes no value", {option->get_name()});
}

} // namespace

std::string commandNamed(const CLI::App &app) {
    std::string names;
    for (const CLI::App *command : commandsNamed(app))
        names += (names.empty() ? "" : " ") + command->get_name();
    return names;
}

void refuseValue(const std::string &text) {
    throw CLI::ParseError(text, CLI::ExitCodes::ValidationError);
}

std::string usageProblem(const CLI::App &app, const CLI::ParseError &error,
                         const std::string &lastWord) {
    // Whatever else is wrong may only follow from a word that nobody takes.
    for (const std::string &word : app.remaining(true))
        if (word != "--")
            return unknownWord(*commandsNamed(app).back(), word);
    switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::RequiredError: return missing(app);
    case CLI::ExitCodes::ExcludesError: return notTogether(app);
    case CLI::ExitCodes::ArgumentMismatch: return wrongCount(app, lastWord);
    case CLI::ExitCodes::ConversionError: return flagWithValue(app);
    default: return error.what(); // of refuseValue
    }
}

} // namespace tembra::tool
