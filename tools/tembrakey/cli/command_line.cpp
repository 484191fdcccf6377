#include "tembrakey/cli/command_line.h"

#include <algorithm>
#include <map>

#include <CLI/CLI.hpp>

#include "tembrakey/cli/command.h"
#include "tembrakey/cli/command_tree.h"
#include "tembrakey/cli/completion.h"
#include "tembrakey/cli/help.h"
#include "tembrakey/cli/usage_error.h"
#include "tembrakey/io/failure.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

using Table = std::span<const CommandEntry *const>;

class CommandLine {
public:
    explicit CommandLine(Table table);

    const CLI::App &app() const { return m_app; }
    void run(std::vector<std::string> words); // throws Failure

private:
    struct Added {
        const CommandEntry *entry;
        std::unique_ptr<Command> command;
    };

    void configure(CLI::App &app);
    CLI::App &group(const std::string &name);
    void add(const CommandEntry &entry);
    void parse(std::vector<std::string> words);
    void printHelp() const;

    CLI::App m_app;
    std::map<const CLI::App *, Added> m_commands;
    Table m_table;
    bool m_json = false;
    std::string m_provider;
    std::string m_device;
};

CommandLine::CommandLine(Table table) : m_app(tr(TOOL_SUMMARY), "tembrakey"), m_table(table) {
    configure(m_app);
    m_app.require_subcommand(1);
    m_app.set_version_flag("--version", std::string("tembrakey ") + TEMBRA_VERSION,
                           tr("show the version"));
    Arguments(m_app)
        .flag("--json", m_json, "print results and errors as JSON")
        .text("--provider PATH", m_provider, "use this library as the provider")
        .text("--device INDEX|SERIAL", m_device, "use this device (see list)");
    for (const CommandEntry *entry : table)
        add(*entry);
    m_app.add_subcommand("help", tr("Show the help of a command"));
}

void CommandLine::configure(CLI::App &app) {
    app.set_help_flag("-h,--help", tr("show this help"));
    app.fallthrough();
}

CLI::App &CommandLine::group(const std::string &name) {
    if (findChild(m_app, name) == nullptr) {
        CLI::App *app = m_app.add_subcommand(name, tr(groupSummary(name)));
        configure(*app);
        app->require_subcommand(1);
    }
    return *m_app.get_subcommand(name);
}

void CommandLine::add(const CommandEntry &entry) {
    const std::string name = entry.name;
    const auto blank = name.find(' ');
    CLI::App &parent = blank == name.npos ? m_app : group(name.substr(0, blank));
    CLI::App *app = parent.add_subcommand(name.substr(blank + 1), tr(entry.summary));
    configure(*app);
    Added &added = m_commands[app] = {&entry, entry.make()};
    Arguments arguments(*app);
    added.command->describe(arguments);
}

void CommandLine::parse(std::vector<std::string> words) {
    const std::string lastWord = words.empty() ? "" : words.back();
    std::reverse(words.begin(), words.end()); // as the library takes them
    std::string problem;
    try {
        m_app.parse(std::move(words));
    } catch (const CLI::Success &) {
        problem = unknownWord(m_app);
        if (problem.empty())
            throw;
    } catch (const CLI::ParseError &error) {
        problem = usageProblem(m_app, error, lastWord);
    }
    if (!problem.empty())
        throw Failure(ExitCode::usage,
                      problem + tr(" (see {1} --help)", {fullName(*commandsNamed(m_app).back())}));
}

void CommandLine::printHelp() const {
    const CLI::App &app = *commandsNamed(m_app).back();
    const auto found = m_commands.find(&app);
    Console::write(helpPage(app, found == m_commands.end() ? nullptr : found->second.entry));
}

void CommandLine::run(std::vector<std::string> words) {
    try {
        parse(std::move(words));
    } catch (const CLI::CallForHelp &) {
        return printHelp();
    } catch (const CLI::CallForVersion &version) {
        return Console::write(version.what() + std::string("\n"));
    }
    Context context = {Console(m_json), m_provider, m_device, m_app, m_table};
    m_commands.at(commandsNamed(m_app).back()).command->run(context);
}

} // namespace

int runCommandLine(std::vector<std::string> arguments, Table table) {
    if (arguments == std::vector<std::string>{DEVICES_WORD})
        arguments = {"list", "--json"};
    const auto end = arguments.end();
    const Console console(std::find(arguments.begin(), end, "--json") != end);
    const auto first =
        std::find_if(arguments.begin(), end, [](auto &word) { return word != "--json"; });
    if (first != end && *first == "help") {
        std::rotate(first, first + 1, end);
        arguments.back() = "--help";
    }
    try {
        CommandLine line(table);
        if (first != end && *first == "__complete")
            printCandidates(line.app(), {first + 1, end});
        else
            line.run(std::move(arguments));
        console.finish();
        return static_cast<int>(ExitCode::ok);
    } catch (const Failure &failure) {
        console.error(failure);
        return static_cast<int>(failure.code());
    } catch (const std::bad_alloc &) {
        console.error(Failure(ExitCode::failure, tr("out of memory")));
        return static_cast<int>(ExitCode::failure);
    }
}

} // namespace tembra::tool
