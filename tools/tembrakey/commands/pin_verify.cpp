#include "tembrakey/commands/commands.h"
#include "tembrakey/commands/pin_texts.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class PinVerify final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.flag("--so", so_, "The administrator PIN instead of the user PIN");
        pin_.describe(arguments);
    }
    void run(Context &context) override {
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        verifyPin(device, so_ ? TEMBRA_PWD_ADMIN : TEMBRA_PWD_USER, pin_.read());
        context.console.result(Record().add("pin", so_ ? "administrator" : "user").add("ok", true),
                               tr("The PIN is right"));
    }

private:
    bool so_ = false;
    PinSource pin_{"pin", "PIN"};
};

} // namespace

const CommandEntry pinVerifyCommand = {"pin verify", "Check a PIN", TEMBRA_PIN_WARNING,
                                       "  tembrakey pin verify\n"
                                       "  PIN=12345678 tembrakey pin verify --pin-env PIN\n"
                                       "  tembrakey pin verify --so --pin-fd 3 3<so-pin.txt",
                                       make<PinVerify>};

} // namespace tembra::tool
