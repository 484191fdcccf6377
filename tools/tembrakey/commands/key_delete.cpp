#include "tembrakey/commands/commands.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class KeyDelete final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("-l,--label LABEL", m_label, "The label of the container to delete")
            .required()
            .flag("--yes", m_yes, "Do not ask");
        m_pin.describe(arguments);
    }
    void run(Context &context) override;

private:
    KeyPair eitherPair(const Device &device) const;

    std::string m_label;
    bool m_yes = false;
    PinSource m_pin{"pin", "User PIN"};
};

KeyPair KeyDelete::eitherPair(const Device &device) const {
    SPI_KEYPAIR_HANDLE handle = nullptr;
    if (device.session()->DeviceFindKeypair(device.get(), ORVEL_PKI_KEYPAIRTYPE_ENCRYPT,
                                            m_label.c_str(), &handle) == TEMBRA_SUCCESS)
        return KeyPair(device.session(), handle);
    return chooseKeyPair(device, {m_label, "sign"});
}

void KeyDelete::run(Context &context) {
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    const KeyPair pair = eitherPair(device);
    if (!m_yes && !context.console.confirms(tr(
                      "Delete {1} with all its keys and certificates from the token?", {m_label})))
        throw Failure(ExitCode::failure, tr("Nothing was deleted"));
    logIn(device, m_pin);
    check("DeviceDeleteKeypair", session->DeviceDeleteKeypair(pair.get()));
    context.console.result(Record().add("label", m_label).add("deleted", true),
                           tr("Container {1} deleted", {m_label}));
}

} // namespace

const CommandEntry keyDeleteCommand = {
    "key delete", "Delete a container with both its key pairs and certificates", "",
    "  tembrakey key delete --label alice\n"
    "  tembrakey key delete --label alice --yes --pin-env PIN",
    make<KeyDelete>};

} // namespace tembra::tool
