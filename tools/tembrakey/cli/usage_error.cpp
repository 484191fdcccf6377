#include "tembrakey/cli/usage_error.h"

#include <algorithm>
#include <functional>
#include <vector>

#include <CLI/CLI.hpp>

#include "tembrakey/cli/command_tree.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

// The first option or argument of the commands named for which this holds, or null.
const CLI::Option *find(const CLI::App &app,
                        const std::function<bool(const CLI::Option &)> &predicate) {
    for (const CLI::App *command : commandsNamed(app))
        for (const CLI::Option *option : command->get_options())
            if (predicate(*option))
                return option;
    return nullptr;
}

// Without a value, which may be a PIN put in the wrong place.
std::string optionPart(const std::string &word) {
    return word.substr(0, word.find('='));
}

// How many letters are to be inserted, removed, replaced or swapped with the next to turn one word
// into the other.
std::size_t distance(const std::string &a, const std::string &b) {
    std::vector<std::vector<std::size_t>> steps(a.size() + 1,
                                                std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            steps[i][j] = i + j;
            if (i == 0 || j == 0)
                continue;
            steps[i][j] = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1,
                                    steps[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
        }
    }
    return steps[a.size()][b.size()];
}

std::string suggestion(const std::string &word, const std::vector<std::string> &known) {
    std::size_t least = 1 + std::min(word.size() / 2, std::size_t{3});
    std::string nearest;
    for (const std::string &name : known) {
        // The last word counts: who types "generate" means "key generate".
        const std::size_t steps = distance(word, name.substr(name.rfind(' ') + 1));
        if (steps < least) {
            least = steps;
            nearest = name;
        }
    }
    return nearest.empty() ? "" : tr("; did you mean {1}?", {nearest});
}

std::string unknownOption(const CLI::App &app, const std::string &name) {
    std::vector<std::string> known;
    for (const CLI::App *command : commandsNamed(app))
        for (const CLI::Option *option : command->get_options())
            for (const std::string &one : optionNames(*option))
                known.push_back(one);
    return tr("unknown option {1}", {name}) + suggestion(name, known);
}

std::string unknownCommand(const CLI::App &parent, const std::string &name) {
    std::vector<std::string> known;
    for (const CLI::App *child : children(parent)) {
        known.push_back(child->get_name());
        for (const CLI::App *grandchild : children(*child))
            known.push_back(child->get_name() + " " + grandchild->get_name());
    }
    return tr("unknown command {1}", {name}) + suggestion(name, known);
}

std::string missing(const CLI::App &app) {
    const CLI::Option *option =
        find(app, [](const CLI::Option &one) { return one.get_required() && one.count() == 0; });
    return option == nullptr ? tr("a command is required")
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
    return tr("{1} and {2} cannot be combined",
              {option->get_name(), givenRival(*option)->get_name()});
}

std::string wrongCount(const CLI::App &app, const std::string &lastWord) {
    const CLI::Option *option =
        find(app, [](const CLI::Option &one) { return !isFlag(one) && one.count() > 1; });
    return option == nullptr ? tr("{1} needs a value", {optionPart(lastWord)})
                             : tr("{1} may be given only once", {option->get_name()});
}

std::string flagWithValue(const CLI::App &app) {
    const CLI::Option *option = find(app, [](const CLI::Option &one) {
        return isFlag(one) && one.count() > 0 && one.results().back() != "true";
    });
    return tr("{1} takes no value", {option->get_name()});
}

} // namespace

std::string unknownWord(const CLI::App &app) {
    for (const std::string &word : app.remaining(true)) {
        const CLI::App &command = *commandsNamed(app).back();
        if (word.size() > 1 && word[0] == '-' && word != "--")
            return unknownOption(app, optionPart(word));
        if (word != "--")
            return command.get_require_subcommand_min() > 0 ? unknownCommand(command, word)
                                                            : tr("unexpected argument {1}", {word});
    }
    return "";
}

std::string usageProblem(const CLI::App &app, const CLI::ParseError &error,
                         const std::string &lastWord) {
    // Whatever else is wrong may only follow from a word that nobody takes.
    std::string unknown = unknownWord(app);
    if (!unknown.empty())
        return unknown;
    switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::RequiredError: return missing(app);
    case CLI::ExitCodes::ExcludesError: return notTogether(app);
    case CLI::ExitCodes::ArgumentMismatch: return wrongCount(app, lastWord);
    case CLI::ExitCodes::ConversionError: return flagWithValue(app);
    default: return error.what(); // of a check in arguments.cpp
    }
}

} // namespace tembra::tool
