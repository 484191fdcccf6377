#include "tembrakey/commands/commands.h"
#include "tembrakey/commands/pin_texts.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class PinUnblock final : public Command {
public:
    void describe(Arguments &arguments) override {
        m_soPin.describe(arguments, "pin");
        m_newPin.describe(arguments);
    }
    void run(Context &context) override {
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        const SecretText soPin = m_soPin.read();
        const SecretText newPin = m_newPin.readNew();
        int tries = -1;
        const int result = session->DeviceUnlockPwd(device.get(), TEMBRA_PWD_USER, soPin.c_str(),
                                                    newPin.c_str(), &tries);
        checkUnblocked(device, result, tries);
        context.console.result(Record().add("pin", "user").add("unblocked", true),
                               tr("The user PIN is unblocked and set"));
    }

private:
    // A wrong administrator PIN is a plain failure to this entry point; the token's count of tries
    // tells it from the others.
    static void checkUnblocked(const Device &device, int result, int tries) {
        if (result == TEMBRA_FAILURE && tries > 0)
            throw Failure(
                ExitCode::wrongPin,
                tr("{1} answered {2}: {3}", {"DeviceUnlockPwd", "0",
                                             tr("the administrator PIN is wrong, tries left: {1}",
                                                {std::to_string(tries)})}),
                "DeviceUnlockPwd", result);
        checkPin("DeviceUnlockPwd", device, TEMBRA_PWD_ADMIN, result);
    }

    PinSource m_soPin{"so-pin", "Administrator PIN"};
    PinSource m_newPin{"new-pin", "New user PIN"};
};

} // namespace

const CommandEntry pinUnblockCommand = {
    "pin unblock", "Unblock the user PIN with the administrator PIN, and set it",
    TEMBRA_PIN_WARNING "\n"
                       "",
    "  tembrakey pin unblock\n"
    "  tembrakey pin unblock --so-pin-env SO --new-pin-env NEW",
    make<PinUnblock>};

} // namespace tembra::tool
