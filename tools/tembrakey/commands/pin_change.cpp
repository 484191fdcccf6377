#include "tembrakey/commands/commands.h"
#include "tembrakey/commands/pin_texts.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class PinChange final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.flag("--so", m_so, "The administrator PIN instead of the user PIN");
        m_pin.describe(arguments);
        m_newPin.describe(arguments);
    }
    void run(Context &context) override {
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        const SecretText oldPin = m_pin.read();
        const SecretText newPin = m_newPin.readNew();
        const int type = m_so ? TEMBRA_PWD_ADMIN : TEMBRA_PWD_USER;
        int tries = -1;
        checkPin(
            "DeviceChangePwd", device, type,
            session->DeviceChangePwd(device.get(), type, oldPin.c_str(), newPin.c_str(), &tries));
        context.console.result(
            Record().add("pin", m_so ? "administrator" : "user").add("changed", true),
            tr("The PIN is changed"));
    }

private:
    bool m_so = false;
    PinSource m_pin{"pin", "Present PIN"};
    PinSource m_newPin{"new-pin", "New PIN"};
};

} // namespace

const CommandEntry pinChangeCommand = {
    "pin change", "Change a PIN",
    TEMBRA_PIN_WARNING "\n"
                       "",
    "  tembrakey pin change\n"
    "  tembrakey pin change --pin-env OLD --new-pin-env NEW\n"
    "  printf '%s\\n' \"$OLD\" \"$NEW\" | tembrakey pin change --pin-fd 0 "
    "--new-pin-fd 0",
    make<PinChange>};

} // namespace tembra::tool
