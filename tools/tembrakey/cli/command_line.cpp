#include "tembrakey/cli/command_line.h"

#include <algorithm>
#include <map>

#include <CLI/CLI.hpp>

#include "tembrakey/cli/command.h"
#include "tembrakey/cli/failure.h"
#include "tembrakey/cli/help.h"
#include "tembrakey/cli/usage_error.h"
#include "tembrakey/commands/commands.h"
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
    const CLI::App &app() const { return app_; }
    int exit(const CLI::ParseError &error) { return app_.exit(error); }

private:
    struct Planted {
        CLI::App *app;
        std::unique_ptr<Command> command;
    };

    CLI::App &group(const std::string &name);
    void plant(const CommandEntry &entry);

    CLI::App app_;
    std::map<std::string, CLI::App *> groups_;
    std::vector<Planted> planted_;
    bool json_ = false;
    std::string provider_;
    std::string device_;
};

void shape(CLI::App &app) {
    app.option_defaults()->group(tr("Options")); // the heading that it stands under
    app.set_help_flag("-h,--help", tr("Show this help and end"));
    app.fallthrough();
}

CommandLine::CommandLine() : app_(tr(toolSummary), "tembrakey") {
    app_.formatter(makeHelpFormatter());
    shape(app_);
    app_.set_version_flag("--version", std::string("tembrakey ") + TEMBRA_VERSION,
                          tr("Show the version and end"));
    app_.require_subcommand(1);
    app_.footer(tr(toolFooter));
    Arguments(app_)
        .flag("--json", json_, "Print results and errors as JSON")
        .text("--provider PATH", provider_,
              "The provider's library (else TEMBRA_KEY_PROV, else beside this program)")
        .text("--device INDEX|SERIAL", device_, "The device, as list shows it");
    for (const CommandEntry *entry : commandTable())
        plant(*entry);
}

CLI::App &CommandLine::group(const std::string &name) {
    CLI::App *&app = groups_[name];
    if (app == nullptr) {
        app = app_.add_subcommand(name, tr(groupSummary(name)))->group(tr("Subcommands"));
        shape(*app);
        app->require_subcommand(1);
        app->footer("");
    }
    return *app;
}

void CommandLine::plant(const CommandEntry &entry) {
    const std::string name = entry.name;
    const auto blank = name.find(' ');
    CLI::App &parent = blank == std::string::npos ? app_ : group(name.substr(0, blank));
    CLI::App *app = parent.add_subcommand(
        blank == std::string::npos ? name : name.substr(blank + 1), tr(entry.summary));
    app->group(tr("Subcommands"));
    shape(*app);
    const std::string about = entry.about[0] == '\0' ? "" : std::string(tr(entry.about)) + "\n\n";
    app->footer(about + tr("Examples:") + "\n" + entry.examples);
    planted_.push_back({app, entry.make()});
    Arguments arguments(*app);
    planted_.back().command->describe(arguments);
}

void CommandLine::parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end()); // as the library takes them
    app_.parse(std::move(arguments));
}

void CommandLine::run(Context &context) {
    for (const Planted &planted : planted_) {
        if (planted.app->parsed())
            planted.command->run(context);
    }
}

Context CommandLine::context() const {
    return {Console(json_), provider_, device_, &app_};
}

int usageError(const CLI::App &app, const std::string &problem, bool json) {
    const std::string message = problem + tr(" (see {1} --help)", {commandNamed(app)});
    Console(json).error(Failure(ExitCode::Usage, message));
    return static_cast<int>(ExitCode::Usage);
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
        return static_cast<int>(ExitCode::Ok);
    } catch (const Failure &failure) {
        context.console.error(failure);
        return static_cast<int>(failure.code());
    } catch (const std::bad_alloc &) {
        context.console.error(Failure(ExitCode::Failure, tr("Memory ran out")));
        return static_cast<int>(ExitCode::Failure);
    }
}

} // namespace tembra::tool
