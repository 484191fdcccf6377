#include "tembrakey/provider/login.h"

#include "tembrakey/commands/commands.h"
#include "tembrakey/commands/pin_texts.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class Login final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.flag("--so", m_so, "As administrator")
            .flag("--device-auth", m_deviceAuthentication,
                  "With the device-authentication key, 32 characters")
            .excludes("--so");
        m_pin.describe(arguments);
    }
    void run(Context &context) override {
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        const int type = m_deviceAuthentication ? TEMBRA_PWD_DEVICE_AUTH
                         : m_so                 ? TEMBRA_PWD_ADMIN
                                                : TEMBRA_PWD_USER;
        verifyPin(device, type, m_pin.read());
        const char *as = m_deviceAuthentication ? "device" : m_so ? "administrator" : "user";
        context.console.result(Record().add("as", as).add("loggedIn", true), tr("Login succeeded"));
    }

private:
    bool m_so = false;
    bool m_deviceAuthentication = false;
    PinSource m_pin{"pin", "PIN or key"};
};

} // namespace

const CommandEntry loginCommand = {
    "login", "Check that a login works: user, administrator or device authentication",
    "A login ends with the process: commands that need one take the PIN options themselves.\n" //
    TEMBRA_PIN_WARNING,
    "  tembrakey login\n"
    "  tembrakey login --so --pin-env SO_PIN\n"
    "  tembrakey login --device-auth --pin-fd 3 3<device-key.txt",
    make<Login>};

} // namespace tembra::tool
