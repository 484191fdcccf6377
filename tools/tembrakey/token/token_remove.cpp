#include "tembrakey/commands/commands.h"
#include "tembrakey/text/text.h"
#include "tembrakey/token/soft_token_library.h"

namespace tembra::tool {

namespace {

class TokenRemove final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("SERIAL", serial_, "The token's serial number")
            .required()
            .flag("--yes", yes_, "Do not ask");
    }
    void run(Context &context) override {
        const SoftTokenLibrary library;
        if (!yes_ && !context.console.confirms(
                         tr("Remove the software token {1} with all that is on it?", {serial_})))
            throw Failure(ExitCode::Failure, tr("Nothing was removed"));
        library.remove(softTokenPrefix + serial_);
        context.console.result(Record().add("serial", serial_).add("removed", true),
                               tr("Software token {1} removed", {serial_}));
    }

private:
    std::string serial_;
    bool yes_ = false;
};

} // namespace

const CommandEntry tokenRemoveCommand = {"token remove", "Remove a software token for good", "",
                                         "  tembrakey token list\n"
                                         "  tembrakey token remove 0123456789012345 --yes",
                                         make<TokenRemove>};

} // namespace tembra::tool
