#include "tembrakey/cli/man_page.h"

#include <CLI/CLI.hpp>

#include "tembrakey/cli/command.h"
#include "tembrakey/cli/command_tree.h"
#include "tembrakey/cli/help.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

// Keeps roff from interpreting backslashes, and dots and quotes at the start of a line.
std::string escaped(const std::string &text) {
    std::string result;
    bool atStart = true;
    for (const char c : text) {
        if (c == '\\')
            result += "\\e";
        else if (c == '-')
            result += "\\-";
        else if (atStart && (c == '.' || c == '\''))
            result += std::string("\\&") + c;
        else
            result += c;
        atStart = c == '\n';
    }
    return result;
}

std::string bold(const std::string &text) {
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string &text) {
    return " \\fI" + escaped(text) + "\\fR";
}

std::string verbatim(const std::string &text) {
    return ".nf\n" + escaped(text) + (text.ends_with('\n') ? "" : "\n") + ".fi\n";
}

std::string section(const std::string &title) {
    return ".SH " + title + "\n";
}

std::string options(const CLI::App &app) {
    std::string text;
    for (const CLI::Option *option : listedOptions(app)) {
        std::string names;
        for (const std::string &name : optionNames(*option))
            names += (names.empty() ? "" : ", ") + bold(name);
        const std::string value = valueName(*option);
        text += ".TP\n" + names + (value.empty() ? "" : italic(value)) + "\n" +
                escaped(option->get_description()) + "\n";
    }
    return text;
}

std::string synopsis(const CLI::App &app) {
    std::string text = bold(fullName(app)) + " [" + tr("OPTIONS") + "]";
    for (const CLI::Option *option : listedOptions(app))
        if (option->get_positional())
            text += italic(option->get_name(true));
    return text;
}

std::string command(const CLI::App &app, const CommandEntry &entry) {
    std::string text = ".SS " + escaped(fullName(app)) + "\n" + synopsis(app) + "\n.PP\n" +
                       escaped(app.get_description()) + "\n" + options(app);
    if (entry.about[0] != '\0')
        text += ".PP\n" + escaped(tr(entry.about)) + "\n";
    return text + ".PP\n" + verbatim(entry.examples);
}

} // namespace

std::string manPage(const CLI::App &app, std::span<const CommandEntry *const> table) {
    std::string page = ".TH TEMBRAKEY 1 \"\" \"tembrakey " TEMBRA_VERSION "\"\n";
    page += section(tr("NAME")) + "tembrakey \\- " + escaped(app.get_description()) + "\n";
    page += section(tr("SYNOPSIS")) + synopsis(app) + italic(tr("COMMAND")) + "\n";
    page += section(tr("OPTIONS FOR ALL COMMANDS")) + options(app);
    page += section(tr("COMMANDS"));
    for (const CommandEntry *entry : table)
        page += command(commandOf(app, *entry), *entry);
    for (const HelpSection &block : TOOL_SECTIONS)
        page += section(tr(block.title)) + verbatim(tr(block.text));
    page += section(tr("FILES")) +
            verbatim(tr("  /etc/tembra_key_prov.reg  settings of the provider\n"
                        "  tembra_key_prov.log       trace log, in the temporary folder unless "
                        "TEMBRA_KEY_PROV_LOG_PATH is set\n"));
    return page + section(tr("SEE ALSO")) + bold("tembra-devkit") + "(1), " + bold("openssl") +
           "(1)\n";
}

} // namespace tembra::tool
