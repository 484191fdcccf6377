#include "tembrakey/cli/command_line.h"

#include <algorithm>
#include <map>

#include <CLI/CLI.hpp>

#include "tembrakey/cli/command.h"
#include "tembrakey/cli/help.h"
#include "tembrakey/cli/usage_error.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/io/failure.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class CommandLine {
public:
    CommandLine();

    // Throws CLI::ParseError.
    void parse(std::vector<std::string> arguments);
    void run(Context &context);
    Context context() const;
    const CLI::App &app() const { return m_app; }
    int exit(const CLI::ParseError &error) { return m_app.exit(error); }

private:
    struct Planted {
        CLI::App *app;
        std::unique_ptr<Command> command;
    };

    CLI::App &group(const std::string &name);
    void plant(const CommandEntry &entry);

    CLI::App m_app;
    std::map<std::string, CLI::App *> m_groups;
    std::vector<Planted> m_planted;
    bool m_json = false;
    std::string m_provider;
    std::string m_device;
};

void shape(CLI::App &app) {
    app.option_defaults()->group(tr("Options")); // the heading that it stands under
    app.set_help_flag("-h,--help", tr("Show this help and end"));
    app.fallthrough();
}

CommandLine::CommandLine() : m_app(tr(TOOL_SUMMARY), "tembrakey") {
    m_app.formatter(makeHelpFormatter());
    shape(m_app);
    m_app.set_version_flag("--version", std::string("tembrakey ") + TEMBRA_VERSION,
                           tr("Show the version and end"));
    m_app.require_subcommand(1);
    m_app.footer(tr(TOOL_FOOTER));
    Arguments(m_app)
        .flag("--json", m_json, "Print results and errors as JSON")
        .text("--provider PATH", m_provider,
              "The provider's library (else TEMBRA_KEY_PROV, else beside this program)")
        .text("--device INDEX|SERIAL", m_device, "The device, as list shows it");
    for (const CommandEntry *entry : commandTable())
        plant(*entry);
}

CLI::App &CommandLine::group(const std::string &name) {
    CLI::App *&app = m_groups[name];
    if (app == nullptr) {
        app = m_app.add_subcommand(name, tr(groupSummary(name)))->group(tr("Subcommands"));
        shape(*app);
        app->require_subcommand(1);
        app->footer("");
    }
    return *app;
}

void CommandLine::plant(const CommandEntry &entry) {
    const std::string name = entry.name;
    const auto blank = name.find(' ');
    CLI::App &parent = blank == std::string::npos ? m_app : group(name.substr(0, blank));
    CLI::App *app = parent.add_subcommand(
        blank == std::string::npos ? name : name.substr(blank + 1), tr(entry.summary));
    app->group(tr("Subcommands"));
    shape(*app);
    const std::string about = entry.about[0] == '\0' ? "" : std::string(tr(entry.about)) + "\n\n";
    app->footer(about + tr("Examples:") + "\n" + entry.examples);
    m_planted.push_back({app, entry.make()});
    Arguments arguments(*app);
    m_planted.back().command->describe(arguments);
}

void CommandLine::parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end()); // as the library takes them
    m_app.parse(std::move(arguments));
}

void CommandLine::run(Context &context) {
    for (const Planted &planted : m_planted)
        if (planted.app->parsed())
            planted.command->run(context);
}

Context CommandLine::context() const {
    return {Console(m_json), m_provider, m_device, &m_app};
}

int usageError(const CLI::App &app, const std::string &problem, bool json) {
    const std::string message = problem + tr(" (see {1} --help)", {commandNamed(app)});
    Console(json).error(Failure(ExitCode::usage, message));
    return static_cast<int>(ExitCode::usage);
}

} // namespace

int runCommandLine(std::vector<std::string> arguments) {
    const bool json = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
    const std::string lastWord = arguments.empty() ? "" : arguments.back();
    CommandLine line;
    try {
        line.parse(std::move(arguments));
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0)
            return line.exit(error); // help or version
        return usageError(line.app(), usageProblem(line.app(), error, lastWord), json);
    }
    Context context = line.context();
    try {
        line.run(context);
        context.console.finish();
        return static_cast<int>(ExitCode::ok);
    } catch (const Failure &failure) {
        context.console.error(failure);
        return static_cast<int>(failure.code());
    } catch (const std::bad_alloc &) {
        context.console.error(Failure(ExitCode::failure, tr("Memory ran out")));
        return static_cast<int>(ExitCode::failure);
    }
}

} // namespace tembra::tool
