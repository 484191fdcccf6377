#include "tembrakey/cli/completion.h"
#include "tembrakey/cli/completion_words.h"

namespace tembra::tool {

namespace {

// Within single quotes, where a quote ends them and begins them anew.
std::string zshQuoted(const std::string &text) {
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

// What stands in an option's place, for `_arguments`: its name, and what offers it.
std::string zshValue(const OptionWords &option) {
    switch (option.kind) {
    case ValueKind::none: return "";
    case ValueKind::file: return ":" + option.value + ":_files";
    case ValueKind::variable: return ":" + option.value + ":_parameters -g '*export*'";
    case ValueKind::choice: return ":value:(" + option.value + ")";
    default: return ":" + option.value + ": ";
    }
}

// "'(-l --label)--label=[help]:LABEL: '" for each name of each option.
std::string optionForms(const CommandWords &command) {
    std::string lines;
    for (const OptionWords &option : command.options) {
        std::string all;
        for (const std::string &name : option.names)
            all += (all.empty() ? "" : " ") + name;
        for (const std::string &name : option.names) {
            const bool isLong = name.starts_with("--") && option.kind != ValueKind::none;
            lines += "            " +
                     zshQuoted("(" + all + ")" + name + (isLong ? "=" : "") + "[" +
                               escaped(option.help, "[]:\\") + "]" + zshValue(option)) +
                     "\n";
        }
        if (option.names.empty())
            lines += "            " + zshQuoted(zshValue(option)) + "\n";
    }
    return lines;
}

std::string subcommands(const CommandWords &command) {
    std::string lines;
    for (const auto &[name, help] : command.subcommands)
        lines += "            " + zshQuoted(name + ":" + escaped(help, ":\\")) + "\n";
    return lines;
}

} // namespace

std::string zshCompletion(const CLI::App &app) {
    const std::vector<CommandWords> commands = completionWords(app);
    std::string cases;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const std::string list = subcommands(commands[i]);
        const std::string forms = i > 0 ? optionForms(commands[i]) : std::string();
        cases += "    (" + zshQuoted(commands[i].name) + ")\n";
        if (!list.empty())
            cases += "        subcommands=(\n" + list + "        )\n";
        if (!forms.empty())
            cases += "        forms+=(\n" + forms + "        )\n";
        cases += "        ;;\n";
    }
    return "#compdef tembrakey\n"
           "# Completion of tembrakey for zsh; made by: tembrakey completion zsh\n"
           "_tembrakey_subcommands() {\n"
           "    _describe -t commands command subcommands\n"
           "}\n"
           "_tembrakey() {\n"
           "    local command=tembrakey\n"
           "    local -a subcommands forms\n"
           "    integer i at=1\n"
           "    for (( i = 2; i < CURRENT; ++i )); do\n"
           "        case \"$command $words[i]\" in\n"
           "        (" +
           quotedNames(commands, "|") +
           ") command+=\" $words[i]\" at=i ;;\n"
           "        esac\n"
           "    done\n"
           "    forms=(\n" +
           optionForms(commands[0]) +
           "    )\n"
           "    case $command in\n" +
           cases +
           "    esac\n"
           "    [[ $#subcommands -eq 0 ]] || forms+=('1:command:_tembrakey_subcommands')\n"
           "    shift $(( at - 1 )) words\n"
           "    (( CURRENT -= at - 1 ))\n"
           "    _arguments -s $forms\n"
           "}\n"
           "if [[ $funcstack[1] == _tembrakey ]]; then\n"
           "    _tembrakey \"$@\"\n"
           "else\n"
           "    compdef _tembrakey tembrakey\n"
           "fi\n";
}

} // namespace tembra::tool
