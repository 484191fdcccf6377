#include "tembrakey/cli/completion.h"

#include <algorithm>

#include "tembrakey/cli/command_tree.h"

namespace tembra::tool {

namespace {

std::string optionNames(const CLI::App &app) {
    std::string names;
    for (const CLI::Option *option : app.get_options()) {
        for (const std::string &name : option->get_lnames())
            names += (names.empty() ? "--" : " --") + name;
    }
    return names;
}

// What can stand behind an option, for `compgen`: choices, files, or nothing that we could know.
std::string valuesOf(const std::string &valueName) {
    if (valueName == "FILE" || valueName == "OUT" || valueName == "PATH")
        return "-f";
    if (valueName == "NAME")
        return "-v"; // a variable's, for PINs
    std::string words = valueName;
    const bool isChoice = words.find('|') != words.npos && words != "INDEX|SERIAL";
    if (!isChoice)
        return "-W ''";
    std::replace(words.begin(), words.end(), '|', ' ');
    return "-W '" + words + "'";
}

// "        'tembrakey key generate --algo') COMPREPLY=(...); return ;;" for each option with a
// value.
std::string optionValues(const CLI::App &app, const std::string &pattern) {
    std::string lines;
    for (const CLI::Option *option : app.get_options()) {
        const std::string value = option->get_type_name();
        if (value.empty() || option->get_positional())
            continue;
        std::string patterns;
        for (const std::string &name : option->get_lnames())
            patterns.append(patterns.empty() ? "" : " | ")
                .append(pattern)
                .append("' --" + name + "'");
        for (const std::string &name : option->get_snames())
            patterns.append(" | ").append(pattern).append("' -" + name + "'");
        lines += "        " + patterns + ") mapfile -t COMPREPLY < <(compgen " + valuesOf(value) +
                 " -- \"$current\"); return ;;\n";
    }
    return lines;
}

// What may come next after a command: its own, its options, files where it takes one.
std::string nextWords(const CLI::App &app, const std::string &name, const std::string &global) {
    std::string words;
    for (const CLI::App *child : children(app))
        words += child->get_name() + " ";
    std::string files;
    for (const CLI::Option *option : app.get_options()) {
        if (option->get_positional() && option->get_name(true) == "FILE")
            files = " files=-f";
    }
    return "        '" + name + "') words='" + words + optionNames(app) + " " + global + "'" +
           files + " ;;\n";
}

} // namespace

std::string bashCompletion(const CLI::App &app) {
    std::string steps;
    std::string values = optionValues(app, "*");
    std::string next;
    const std::string global = optionNames(app);
    forEachCommand(app, "tembrakey", [&](const CLI::App &one, const std::string &name) {
        const bool isTool = one.get_parent() == nullptr;
        if (!isTool) {
            steps += (steps.empty() ? "'" : " | '") + name + "'";
            values += optionValues(one, "'" + name + "'");
        }
        next += nextWords(one, name, isTool ? std::string() : global);
    });
    return "# Completion of tembrakey for bash; made by: tembrakey completion bash\n"
           "_tembrakey() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} command=tembrakey word words= files=\n"
           "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           "        case \"$command $word\" in\n        " +
           steps +
           ") command+=\" $word\" ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$command ${COMP_WORDS[COMP_CWORD - 1]}\" in\n" +
           values +
           "    esac\n"
           "    case $command in\n" +
           next +
           "    esac\n"
           "    [[ $current == -* || -z $files ]] || words=\n"
           "    mapfile -t COMPREPLY < <(compgen $files -W \"$words\" -- \"$current\")\n"
           "}\n"
           "complete -o filenames -F _tembrakey tembrakey\n";
}

} // namespace tembra::tool
