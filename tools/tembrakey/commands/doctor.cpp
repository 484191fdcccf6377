#include "tembrakey/commands/commands.h"
#include "tembrakey/doctor/libraries.h"
#include "tembrakey/doctor/settings.h"
#include "tembrakey/doctor/tokens.h"
#include "tembrakey/doctor/trace_log.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class Doctor final : public Command {
public:
    void describe(Arguments &) override {}
    void run(Context &context) override;
};

void Doctor::run(Context &context) {
    doctor::Report report;
    doctor::Libraries libraries;
    examineLibraries(report, context.provider, libraries);
    const bool isLoaded = libraries.providerWorks && libraries.tokenWorks;
    doctor::examineSettings(report);
    doctor::examineTraceLog(report);
    if (libraries.tokenWorks) {
        const int tokens = doctor::examineTokens(report, libraries.token);
        if (isLoaded)
            doctor::examineProviderRun(report, context.provider, tokens);
    }
    context.console.result(report.record(), report.text());
    if (!isLoaded)
        throw Failure(ExitCode::noProvider, tr("Hosts cannot use the provider: see above"));
    if (report.count(doctor::Status::failure) > 0)
        throw Failure(ExitCode::failure, tr("Something does not work: see above"));
}

} // namespace

const CommandEntry doctorCommand = {
    "doctor", "Find out what is wrong: libraries, settings, trace log, tokens",
    "Looks at everything that a host needs, and says what to do about each finding. It logs in\n"
    "nowhere and changes nothing, except that the provider writes its trace log as always. The\n"
    "exit code is 0 when hosts can work (there may be warnings), 8 when a library is missing or\n"
    "lacks functions, and 1 when something else does not work.",
    "  tembrakey doctor\n"
    "  tembrakey doctor --provider /opt/host/lib/libTembraKeyProv.so\n"
    "  tembrakey doctor --json | jq '.findings[] | select(.status != \"ok\")'",
    make<Doctor>};

} // namespace tembra::tool
