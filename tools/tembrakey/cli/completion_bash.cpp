#include "tembrakey/cli/completion.h"
#include "tembrakey/cli/completion_words.h"

namespace tembra::tool {

namespace {

// What can stand in an option's place, for `compgen`.
std::string valuesOf(const OptionWords &option) {
    switch (option.kind) {
    case ValueKind::file: return "-f";
    case ValueKind::variable: return "-v";
    case ValueKind::choice: return "-W '" + option.value + "'";
    default: return "-W ''";
    }
}

// "        'tembrakey key generate --algo') COMPREPLY=(...); return ;;" for each option with a
// value.
std::string optionValues(const CommandWords &command, const std::string &pattern) {
    std::string lines;
    for (const OptionWords &option : command.options) {
        std::string patterns;
        for (const std::string &name : option.names)
            patterns += (patterns.empty() ? "" : " | ") + pattern + "' " + name + "'";
        if (!patterns.empty() && option.kind != ValueKind::none)
            lines += "        " + patterns + ") mapfile -t COMPREPLY < <(compgen " +
                     valuesOf(option) + " -- \"$current\"); return ;;\n";
    }
    return lines;
}

std::string longNames(const CommandWords &command) {
    std::string names;
    for (const OptionWords &option : command.options)
        for (const std::string &name : option.names)
            names += name.starts_with("--") ? name + " " : "";
    return names;
}

// What may come next after a command: its own, its options, what it takes by its place.
std::string nextWords(const CommandWords &command, const std::string &global) {
    std::string words;
    for (const auto &[name, help] : command.subcommands)
        words += name + " ";
    std::string place;
    for (const OptionWords &option : command.options) {
        if (option.names.empty() && option.kind == ValueKind::choice)
            place = " place='" + option.value + "'";
        if (option.names.empty() && option.kind == ValueKind::file)
            place = " files=-f";
    }
    return "        '" + command.name + "') words='" + words + longNames(command) + global + "'" +
           place + " ;;\n";
}

} // namespace

std::string bashCompletion(const CLI::App &app) {
    const std::vector<CommandWords> commands = completionWords(app);
    std::string values = optionValues(commands[0], "*");
    std::string next = nextWords(commands[0], "");
    for (std::size_t i = 1; i < commands.size(); ++i) {
        values += optionValues(commands[i], "'" + commands[i].name + "'");
        next += nextWords(commands[i], longNames(commands[0]));
    }
    return "# Completion of tembrakey for bash; made by: tembrakey completion bash\n"
           "_tembrakey() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} command=tembrakey word words= files= "
           "place=\n"
           "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           "        case \"$command $word\" in\n"
           "        " +
           quotedNames(commands, " | ") +
           ") command+=\" $word\" ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$command ${COMP_WORDS[COMP_CWORD - 1]}\" in\n" +
           values +
           "    esac\n"
           "    case $command in\n" +
           next +
           "    esac\n"
           "    [[ $current == -* || -z $files$place ]] || words=$place\n"
           "    mapfile -t COMPREPLY < <(compgen $files -W \"$words\" -- \"$current\")\n"
           "}\n"
           "complete -o filenames -F _tembrakey tembrakey\n";
}

} // namespace tembra::tool
