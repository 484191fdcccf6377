#include "tembrakey/cli/man_page.h"

#include <algorithm>
#include <sstream>

#include "tembrakey/cli/command_tree.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

// Keeps what roff would take as its own: backslashes, and dots and quotes that begin a line.
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

// As it stands, line for line.
std::string verbatim(const std::string &text) {
    return ".nf\n" + escaped(text) + (text.ends_with('\n') ? "" : "\n") + ".fi\n";
}

std::string heading(const char *title, const std::string &text) {
    return std::string(".SH ") + tr(title) + "\n" + text;
}

std::string optionNames(const CLI::Option &option) {
    std::string names;
    for (const std::string &name : option.get_snames())
        names += (names.empty() ? "" : ", ") + bold("-" + name);
    for (const std::string &name : option.get_lnames())
        names += (names.empty() ? "" : ", ") + bold("--" + name);
    if (option.get_positional())
        names = "\\fI" + escaped(option.get_name(true)) + "\\fR";
    const std::string value = option.get_type_name();
    return value.empty() ? names : names + " \\fI" + escaped(value) + "\\fR";
}

std::string options(const CLI::App &app) {
    std::string text;
    for (const bool isPositional : {true, false}) {
        for (const CLI::Option *option : app.get_options()) {
            const bool isHelp = option == app.get_help_ptr() && app.get_parent() != nullptr;
            if (!isHelp && option->get_positional() == isPositional)
                text += ".TP\n" + optionNames(*option) + "\n" + escaped(option->get_description()) +
                        "\n";
        }
    }
    return text;
}

std::string synopsis(const CLI::App &app, const std::string &name) {
    std::string text = bold(name) + " [" + tr("OPTIONS") + "]";
    for (const CLI::Option *option : app.get_options())
        if (option->get_positional())
            text += " \\fI" + escaped(option->get_name(true)) + "\\fR";
    return text;
}

// A command's footer holds what else one should know, and examples.
std::string command(const CLI::App &app, const std::string &name) {
    const std::string footer = app.get_footer();
    const std::string mark = std::string(tr("Examples:")) + "\n";
    const auto at = footer.find(mark);
    std::string about = footer.substr(0, at);
    while (about.ends_with('\n'))
        about.pop_back();
    std::string text = ".SS " + escaped(name) + "\n" + synopsis(app, name) + "\n.PP\n" +
                       escaped(app.get_description()) + "\n" + options(app);
    if (!about.empty())
        text += ".PP\n" + escaped(about) + "\n";
    if (at != footer.npos)
        text += ".PP\n" + verbatim(footer.substr(at + mark.size()));
    return text;
}

// The tool's footer: blocks with a heading, parted by empty lines.
std::string closing(const std::string &footer) {
    std::string text;
    std::istringstream lines(footer);
    for (std::string line; std::getline(lines, line);) {
        const bool isHeading = !line.empty() && line[0] != ' ' && line.ends_with(":");
        if (isHeading)
            text +=
                (text.empty() ? ".SH " : ".fi\n.SH ") + line.substr(0, line.size() - 1) + "\n.nf\n";
        else
            text += escaped(line) + "\n";
    }
    return text.empty() ? text : text + ".fi\n";
}

} // namespace

std::string manPage(const CLI::App &app) {
    std::string page = ".TH TEMBRAKEY 1 \"\" \"tembrakey " TEMBRA_VERSION "\"\n";
    page += heading("NAME", "tembrakey \\- " + escaped(app.get_description()) + "\n");
    page += heading("SYNOPSIS", synopsis(app, "tembrakey") + " \\fI" + tr("SUBCOMMAND") + "\\fR\n");
    page += heading("OPTIONS FOR ALL COMMANDS", options(app));
    page += heading("COMMANDS", "");
    forEachCommand(app, "tembrakey", [&](const CLI::App &one, const std::string &name) {
        if (children(one).empty())
            page += command(one, name);
    });
    return page + closing(app.get_footer());
}

} // namespace tembra::tool
