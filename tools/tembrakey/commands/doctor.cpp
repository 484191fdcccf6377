#include "tembrakey/commands/commands.h"
#include "tembrakey/doctor/libraries.h"
#include "tembrakey/doctor/settings.h"
#include "tembrakey/doctor/tokens.h"
#include "tembrakey/doctor/trace_log.h"
#include "tembrakey/platform/child_process.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/platform/streams.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

using doctor::Report;
using doctor::Section;

constexpr int MOST_SECONDS = 10; // for one call of a library

// Libraries and tokens are examined in a child process, which may crash or hang in them. This
// variable says what the child examines: "all", or with "apart" only the libraries below the
// provider.
const char *const PART_VARIABLE = "TEMBRA_DOCTOR_PART";

class Doctor final : public Command {
public:
    void describe(Arguments &) override {}
    void run(Context &context) override;

private:
    static void examine(const std::string &part);
    void examineInChild(const std::string &part);
    void reportEnd(const std::string &part, const platform::ChildEnd &end);

    Report m_report;
    std::string m_library; // of the call that the child made last
    std::string m_function;
};

void printLine(const Json &object) {
    Console::write(object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
    std::fflush(platform::standardOutput());
}

// In the child.
void Doctor::examine(const std::string &part) {
    platform::divertLibraryOutput();
    Report report(printLine);
    const doctor::Checkpoint reached = [](const std::string &library, const std::string &function) {
        printLine({{"library", library}, {"function", function}});
    };
    doctor::Libraries libraries;
    examineLibraries(report, reached, part == "apart", libraries);
    if (libraries.tokenWorks && part != "apart") {
        const int tokens = doctor::examineTokens(report, reached, libraries.token);
        if (libraries.providerWorks)
            doctor::examineProvider(report, reached, tokens);
    }
    reached("", "");
}

void Doctor::reportEnd(const std::string &part, const platform::ChildEnd &end) {
    const bool isLoading = m_function == "loading";
    if (isLoading && part == "all") {
        const std::string provider = m_library;
        examineInChild("apart"); // the fault can be one of the libraries that the provider loads
        if (m_report.hasFailure(Section::libraries))
            return;
        m_library = provider;
    }
    const std::string function = isLoading ? tr("its initialisation") : m_function;
    const std::string seconds = std::to_string(MOST_SECONDS);
    m_report.fail(
        isLoading ? Section::libraries : Section::tokens, tr("library"),
        end.timedOut
            ? tr("{1} does not return from {2} within {3} seconds", {m_library, function, seconds})
            : tr("{1} ends the process in {2} ({3})", {m_library, function, end.status}),
        tr("every host hangs or crashes with it: ask its vendor for another version"),
        {{"path", m_library}, {"function", m_function}});
}

void Doctor::examineInChild(const std::string &part) {
    platform::setEnvironment(PART_VARIABLE, part);
    m_function = "start";
    const auto end = platform::runSelf("doctor", MOST_SECONDS, [this](std::string_view line) {
        Json object = Json::parse(line, nullptr, false);
        if (object.contains("status")) {
            m_report.add(std::move(object));
        } else if (object.is_object()) {
            m_library = object.value("library", "");
            m_function = object.value("function", "");
        }
    });
    if (!m_function.empty())
        reportEnd(part, end);
}

void Doctor::run(Context &context) {
    if (const auto part = platform::environment(PART_VARIABLE))
        return examine(*part);
    if (!context.provider.empty())
        platform::setEnvironment("TEMBRA_KEY_PROV", context.provider);
    doctor::examineSettings(m_report);
    doctor::examineTraceLog(m_report);
    examineInChild("all");
    context.console.result(m_report.json(), m_report.text());
    if (m_report.hasFailure(Section::libraries))
        throw Failure(ExitCode::noProvider, tr("hosts cannot use the provider: see above"));
    if (m_report.count("failure") > 0)
        throw Failure(ExitCode::failure, tr("something does not work: see above"));
}

} // namespace

const CommandEntry doctorCommand = {
    "doctor", N_("Examine libraries, settings, trace log and tokens, and suggest remedies"),
    N_("Examines everything that a host needs and says what to do about each finding. It does not\n"
       "log in and changes nothing, except that the provider writes its trace log. The exit code "
       "is\n"
       "0 when hosts can work (there may be warnings), 8 when a library is missing, lacks "
       "functions\n"
       "or cannot be loaded, and 1 when something else does not work."),
    "  tembrakey doctor\n"
    "  tembrakey doctor --provider /opt/host/lib/libTembraKeyProv.so\n"
    "  tembrakey doctor --json | jq '.findings[] | select(.status != \"ok\")'",
    make<Doctor>};

} // namespace tembra::tool
