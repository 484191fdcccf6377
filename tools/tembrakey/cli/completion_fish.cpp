#include "tembrakey/cli/completion.h"
#include "tembrakey/cli/completion_words.h"

namespace tembra::tool {

namespace {

std::string fishQuoted(const std::string &text) {
    return "'" + escaped(text, "'\\") + "'";
}

// What stands in an option's place, for `complete`.
std::string fishValue(const OptionWords &option) {
    switch (option.kind) {
    case ValueKind::none: return "";
    case ValueKind::file: return " -rF";
    case ValueKind::variable: return " -xa '(set -nx)'";
    case ValueKind::choice: return " -xa " + fishQuoted(option.value);
    default: return " -x";
    }
}

// The lines of a command; those of the tool's options hold whatever the command is.
std::string lines(const CommandWords &command, bool isTool) {
    const std::string here = "complete -c tembrakey -n '__tembrakey_at " + command.name + "'";
    std::string text;
    for (const auto &[name, help] : command.subcommands)
        text += here + " -a " + name + " -d " + fishQuoted(help) + "\n";
    for (const OptionWords &option : command.options) {
        if (option.names.empty() && option.kind == ValueKind::file)
            text += here + " -F\n";
        if (option.names.empty() && option.kind == ValueKind::choice)
            text += here + " -a " + fishQuoted(option.value) + "\n";
        if (option.names.empty())
            continue;
        text += isTool ? "complete -c tembrakey" : here;
        for (const std::string &name : option.names)
            text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
        text += fishValue(option) + " -d " + fishQuoted(option.help) + "\n";
    }
    return text;
}

} // namespace

std::string fishCompletion(const CLI::App &app) {
    const std::vector<CommandWords> commands = completionWords(app);
    std::string text = "# Completion of tembrakey for fish; made by: tembrakey completion fish\n"
                       "function __tembrakey_at -d 'Whether this is the command so far'\n"
                       "    set -l command tembrakey\n"
                       "    set -l words (commandline -opc)\n"
                       "    for word in $words[2..-1]\n"
                       "        switch \"$command $word\"\n"
                       "            case " +
                       quotedNames(commands, " ") +
                       "\n"
                       "                set command \"$command $word\"\n"
                       "        end\n"
                       "    end\n"
                       "    test \"$command\" = \"$argv\"\n"
                       "end\n"
                       "complete -c tembrakey -f\n";
    for (const CommandWords &command : commands)
        text += lines(command, &command == commands.data());
    return text;
}

} // namespace tembra::tool
