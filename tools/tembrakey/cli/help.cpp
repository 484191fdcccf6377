#include "tembrakey/cli/help.h"

#include <CLI/CLI.hpp>

#include "tembrakey/text/text.h"

namespace tembra::tool {

const char *const TOOL_SUMMARY =
    "Smart tokens from the command line, through the TembraKeyProv provider.";

const char *const TOOL_FOOTER =
    "Exit codes:\n"
    "   0  done\n"
    "   1  the token, the host library or the device's state refused\n"
    "   2  wrong usage, or a file whose content cannot be used\n"
    "   3  no such device, key or certificate, or several to choose from\n"
    "   4  not logged in\n"
    "   5  wrong or locked PIN, or failed device authentication\n"
    "   6  already exists\n"
    "   7  the data object does not exist\n"
    "   8  a library cannot be loaded\n"
    "   9  a file cannot be read or written\n"
    "  10  the token does not take a PIN of this length\n"
    "  11  the signature is wrong\n"
    "\n"
    "Environment:\n"
    "  TEMBRA_KEY_PROV            path of the provider's library\n"
    "  TEMBRA_KEY_PROV_LOG_LEVEL  the provider's trace log: 0 off, 1 errors ... 5 verbose\n"
    "  TEMBRA_KEY_PROV_LOG_PATH   where it is written\n"
    "The trace log holds PINs in clear from level 3 on, which is the default.";

const char *groupSummary(const std::string &name) {
    if (name == "token")
        return "Software tokens of the development kit";
    if (name == "pin")
        return "User and administrator PINs";
    if (name == "key")
        return "Key pairs on the token";
    if (name == "cert")
        return "Certificates on the token";
    return "Data objects on the token";
}

namespace {

// The library's own pages without its remarks on types, ranges and exclusions.
class HelpFormatter final : public CLI::Formatter {
    std::string make_option_opts(const CLI::Option *option) const override {
        const std::string value = option->get_type_name();
        return value.empty() ? "" : " " + value;
    }
};

} // namespace

std::shared_ptr<CLI::FormatterBase> makeHelpFormatter() {
    auto formatter = std::make_shared<HelpFormatter>();
    formatter->column_width(34);
    for (const char *word : {"Usage", "Positionals", "Options", "Subcommands"})
        formatter->label(word, tr(word));
    for (const char *word : {"OPTIONS", "SUBCOMMAND"})
        formatter->label(word, tr(word));
    return formatter;
}

} // namespace tembra::tool
