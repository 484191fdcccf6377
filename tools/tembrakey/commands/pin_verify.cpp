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
        arguments.flag("--so", m_so, "The administrator PIN instead of the user PIN");
        m_pin.describe(arguments);
    }
    void run(Context &context) override {
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        verifyPin(device, m_so ? TEMBRA_PWD_ADMIN : TEMBRA_PWD_USER, m_pin.read());
        context.console.result(Record().add("pin", m_so ? "administrator" : "user").add("ok", true),
                               tr("The PIN is right"));
    }

private:
    bool m_so = false;
    PinSource m_pin{"pin", "PIN"};
};

} // namespace

const CommandEntry pinVerifyCommand = {"pin verify", "Check a PIN", TEMBRA_PIN_WARNING,
                                       "  tembrakey pin verify\n"
                                       "  PIN=12345678 tembrakey pin verify --pin-env PIN\n"
                                       "  tembrakey pin verify --so --pin-fd 3 3<so-pin.txt",
                                       make<PinVerify>};

} // namespace tembra::tool
