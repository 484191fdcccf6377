#include "tembrakey/cli/help.h"

#include <CLI/CLI.hpp>

#include "tembrakey/cli/command.h"
#include "tembrakey/cli/command_tree.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

const char *const TOOL_SUMMARY =
    N_("Work with smart tokens from the command line, through the TembraKeyProv provider");

const HelpSection TOOL_SECTIONS[] = {
    {N_("Exit codes"),
     N_("   0  success\n"
        "   1  the token, the host library or the device's state refused\n"
        "   2  wrong usage, or a file whose content cannot be used\n"
        "   3  device, key or certificate not found, or more than one to choose from\n"
        "   4  not logged in\n"
        "   5  wrong or locked PIN, or device authentication failed\n"
        "   6  already exists\n"
        "   7  data object not found\n"
        "   8  library cannot be loaded\n"
        "   9  file cannot be read or written\n"
        "  10  the token does not accept a PIN of this length\n"
        "  11  wrong signature\n")},
    {N_("Environment"), N_("  TEMBRA_KEY_PROV            path of the provider's library\n"
                           "  TEMBRA_KEY_PROV_LOG_LEVEL  level of the provider's trace log, from 0 "
                           "(off) to 5 (verbose)\n"
                           "  TEMBRA_KEY_PROV_LOG_PATH   file of the trace log\n"
                           "  TEMBRA_SOFT_TOKEN_DIR      folder of the software tokens\n"
                           "  LC_ALL, LC_MESSAGES, LANG  language: Chinese or English\n"
                           "The trace log contains PINs in clear at level 3 (the default) and "
                           "above.\n")},
};

const char *groupSummary(const std::string &name) {
    static const std::pair<const char *, const char *> summaries[] = {
        {"token", N_("Manage the software tokens of the development kit")},
        {"pin", N_("Manage the user and administrator PINs")},
        {"key", N_("Manage key pairs on the token")},
        {"cert", N_("Manage certificates on the token")},
        {"data", N_("Manage data objects on the token")},
    };
    for (const auto &[group, summary] : summaries)
        if (name == group)
            return summary;
    return "";
}

namespace {

std::string row(const std::string &term, const std::string &text) {
    constexpr std::size_t width = 30;
    const std::string gap = term.size() + 2 < width ? std::string(width - term.size() - 2, ' ')
                                                    : "\n" + std::string(width, ' ');
    return "  " + term + gap + text + "\n";
}

std::string optionRow(const CLI::Option &option) {
    std::string term;
    for (const std::string &name : optionNames(option))
        term += (term.empty() ? "" : ", ") + name;
    return row(term + (term.empty() ? "" : " ") + valueName(option), option.get_description());
}

std::string usage(const CLI::App &app) {
    std::string line = fullName(app) + " [" + tr("OPTIONS") + "]";
    if (!children(app).empty())
        line += std::string(" ") + tr("COMMAND");
    for (const CLI::Option *option : listedOptions(app))
        if (option->get_positional())
            line += " " + option->get_name(true);
    return tr("Usage: {1}", {line}) + "\n";
}

std::string heading(const std::string &title) {
    return "\n" + tr("{1}:", {title}) + "\n";
}

} // namespace

std::string helpPage(const CLI::App &app, const CommandEntry *entry) {
    std::string page = app.get_description() + "\n\n" + usage(app);
    std::string arguments;
    std::string options;
    for (const CLI::Option *option : listedOptions(app))
        (option->get_positional() ? arguments : options) += optionRow(*option);
    options += optionRow(*app.get_help_ptr());
    if (!arguments.empty())
        page += heading(tr("Arguments")) + arguments;
    page += heading(tr("Options")) + options;
    if (!children(app).empty())
        page += heading(tr("Commands"));
    for (const CLI::App *child : children(app))
        page += row(child->get_name(), child->get_description());
    if (app.get_parent() == nullptr)
        for (const HelpSection &section : TOOL_SECTIONS)
            page += heading(tr(section.title)) + tr(section.text);
    if (entry != nullptr && entry->about[0] != '\0')
        page += std::string("\n") + tr(entry->about) + "\n";
    if (entry != nullptr)
        page += heading(tr("Examples")) + entry->examples + "\n";
    return page;
}

} // namespace tembra::tool
