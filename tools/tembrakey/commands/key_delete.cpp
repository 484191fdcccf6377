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
        arguments.text("-l,--label LABEL", label_, "The label of the container to delete")
            .required()
            .flag("--yes", yes_, "Do not ask");
        pin_.describe(arguments);
    }
    void run(Context &context) override;

private:
    KeyPair eitherPair(const Device &device) const;

    std::string label_;
    bool yes_ = false;
    PinSource pin_{"pin", "User PIN"};
};

KeyPair KeyDelete::eitherPair(const Device &device) const {
    SPI_KEYPAIR_HANDLE handle = nullptr;
    if (device.session()->DeviceFindKeypair(device.get(), ORVEL_PKI_KEYPAIRTYPE_ENCRYPT,
                                            label_.c_str(), &handle) == ORVEL_PKI_SUCCESS)
        return KeyPair(device.session(), handle);
    return chooseKeyPair(device, {label_, "sign"});
}

void KeyDelete::run(Context &context) {
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    const KeyPair pair = eitherPair(device);
    if (!yes_ && !context.console.confirms(
                     tr("Delete {1} with all its keys and certificates from the token?", {label_})))
        throw Failure(ExitCode::Failure, tr("Nothing was deleted"));
    logIn(device, pin_);
    check("DeviceDeleteKeypair", session->DeviceDeleteKeypair(pair.get()));
    context.console.result(Record().add("label", label_).add("deleted", true),
                           tr("Container {1} deleted", {label_}));
}

} // namespace

const CommandEntry keyDeleteCommand = {
    "key delete", "Delete a container with both its key pairs and certificates", "",
    "  tembrakey key delete --label alice\n"
    "  tembrakey key delete --label alice --yes --pin-env PIN",
    make<KeyDelete>};

} // namespace tembra::tool
