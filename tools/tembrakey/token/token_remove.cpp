#include "tembrakey/commands/commands.h"
#include "tembrakey/text/text.h"
#include "tembrakey/token/soft_token_library.h"

namespace tembra::tool {

namespace {

class TokenRemove final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("SERIAL", m_serial, "The token's serial number")
            .required()
            .flag("--yes", m_yes, "Do not ask");
    }
    void run(Context &context) override {
        const SoftTokenLibrary library;
        if (!m_yes && !context.console.confirms(
                          tr("Remove the software token {1} with all that is on it?", {m_serial})))
            throw Failure(ExitCode::failure, tr("Nothing was removed"));
        library.remove(SOFT_TOKEN_PREFIX + m_serial);
        context.console.result(Record().add("serial", m_serial).add("removed", true),
                               tr("Software token {1} removed", {m_serial}));
    }

private:
    std::string m_serial;
    bool m_yes = false;
};

} // namespace

const CommandEntry tokenRemoveCommand = {"token remove", "Remove a software token for good", "",
                                         "  tembrakey token list\n"
                                         "  tembrakey token remove 0123456789012345 --yes",
                                         make<TokenRemove>};

} // namespace tembra::tool
