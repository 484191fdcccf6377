#include "tembrakey/cli/completion.h"

#include <cstdlib>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "tembrakey/cli/command_tree.h"
#include "tembrakey/io/console.h"
#include "tembrakey/platform/child_process.h"

namespace tembra::tool {

const char *const DEVICES_WORD = "__devices";

namespace {

struct Candidate {
    std::string word;
    std::string help;
};
using Candidates = std::vector<Candidate>;

// Where the words before the cursor lead.
struct Position {
    const CLI::App *command;
    const CLI::Option *option = nullptr; // whose value is next
    std::size_t arguments = 0;           // positional ones so far
    bool optionsEnded = false;           // by --
    std::string provider{};              // of --provider
    std::string device{};                // of --device
};

const CLI::Option *findOption(const CLI::App *command, const std::string &name) {
    const CLI::Option *option = nullptr;
    for (; command != nullptr && option == nullptr; command = command->get_parent())
        option = command->get_option_no_throw(name);
    return option;
}

void advance(Position &position, const std::string &word) {
    const auto sign = word.find('=');
    if (position.option != nullptr) {
        if (word == "=")
            return; // bash splits --label=x
        if (position.option->check_lname("provider"))
            position.provider = word;
        if (position.option->check_lname("device"))
            position.device = word;
        position.option = nullptr;
    } else if (!position.optionsEnded && word.starts_with("--") && sign != word.npos) {
        advance(position, word.substr(0, sign));
        if (position.option != nullptr)
            advance(position, word.substr(sign + 1));
    } else if (!position.optionsEnded && word.starts_with('-') && word.size() > 1) {
        position.optionsEnded = word == "--";
        const CLI::Option *option = findOption(position.command, word);
        if (option != nullptr && !isFlag(*option))
            position.option = option;
    } else if (const CLI::App *child = findChild(*position.command, word)) {
        position.command = child;
    } else {
        ++position.arguments;
    }
}

Candidates variables() {
    Candidates found;
    for (char **entry = environ; *entry != nullptr; ++entry)
        found.push_back({std::string(*entry).substr(0, std::string(*entry).find('=')), ""});
    return found;
}

Candidates entryPoints() {
    return {
#define TEMBRA_ENTRY_POINT(result, name, arguments) {#name, ""},
#include "tembra_key_prov_entry_points.h"
    };
}

// Asks a child process what is connected, since a token or its library can hang.
nlohmann::json connectedDevices(const Position &position) {
    platform::setEnvironment("TEMBRA_KEY_PROV_LOG_LEVEL", "0");
    if (!position.provider.empty())
        platform::setEnvironment("TEMBRA_KEY_PROV", position.provider);
    std::string text;
    platform::runSelf(DEVICES_WORD, 1, [&](std::string_view line) { text.append(line) += '\n'; });
    const auto listed = nlohmann::json::parse(text, nullptr, false);
    const auto none = nlohmann::json::array();
    return listed.is_object() ? listed.value("devices", none) : none;
}

Candidates serials(const Position &position) {
    Candidates found;
    for (const auto &device : connectedDevices(position))
        found.push_back({device.value("serial", ""), device.value("label", "")});
    return found;
}

Candidates labels(const Position &position) {
    Candidates found;
    for (const auto &device : connectedDevices(position)) {
        const std::string serial = device.value("serial", "");
        const std::string index = std::to_string(device.value("index", -1));
        if (position.device.empty() || position.device == serial || position.device == index)
            for (const auto &pair : device.value("keyPairs", nlohmann::json::array()))
                found.push_back({pair.value("label", ""), serial});
    }
    return found;
}

Candidates values(const Position &position, const CLI::Option &option) {
    const std::string value = valueName(option);
    if (value == "LABEL")
        return labels(position);
    if (value.ends_with("SERIAL"))
        return serials(position);
    if (value == "FILE" || value == "OUT" || value == "PATH")
        return {{":files", ""}};
    if (value == "NAME,...")
        return entryPoints();
    if (option.get_name().ends_with("-env"))
        return variables();
    Candidates choices;
    if (value.find('|') != value.npos)
        for (const std::string &choice : CLI::detail::split(value, '|'))
            choices.push_back({choice, ""});
    return choices;
}

// What may follow a command: its own commands, or else its next positional argument.
Candidates nextWords(const Position &position) {
    Candidates next;
    for (const CLI::App *child : children(*position.command))
        next.push_back({child->get_name(), child->get_description()});
    std::size_t place = 0;
    for (const CLI::Option *option : listedOptions(*position.command))
        if (option->get_positional() && place++ == position.arguments)
            return values(position, *option);
    return next;
}

Candidates options(const CLI::App *command) {
    Candidates names;
    for (; command != nullptr; command = command->get_parent())
        for (const CLI::Option *option : command->get_options())
            for (const std::string &name : optionNames(*option))
                if (name.starts_with("--") && (name != "--help" || !command->get_parent()))
                    names.push_back({name, option->get_description()});
    return names;
}

} // namespace

void printCandidates(const CLI::App &app, std::vector<std::string> words) {
    std::string current = words.empty() ? "" : words.back();
    if (!words.empty())
        words.pop_back();
    if (!words.empty() && words.front() == "help") // which commands follow as they do without it
        words.erase(words.begin());
    Position position = {&app};
    for (const std::string &word : words)
        advance(position, word);
    if (position.option != nullptr && current == "=")
        current.clear();

    std::string kept; // in front of what is completed: "--label=", or "a," of "a,b"
    const bool isOption = position.option == nullptr && !position.optionsEnded && current[0] == '-';
    const auto sign = current.find('=');
    if (isOption && sign != current.npos) {
        kept = current.substr(0, sign + 1);
        position.option = findOption(position.command, current.substr(0, sign));
    }
    const Candidates candidates = position.option != nullptr ? values(position, *position.option)
                                  : isOption                 ? options(position.command)
                                                             : nextWords(position);
    if (position.option != nullptr && valueName(*position.option) == "NAME,...")
        kept = current.substr(0, std::max(current.rfind(',') + 1, kept.size()));
    for (const Candidate &candidate : candidates) {
        const bool isDirective = candidate.word[0] == ':';
        const std::string word = isDirective ? candidate.word : kept + candidate.word;
        if (isDirective || word.starts_with(current))
            Console::write(word + (candidate.help.empty() ? "" : "\t" + candidate.help) + "\n");
    }
}

} // namespace tembra::tool
