#include "tembrakey/commands/commands.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class KeyGenerate final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.choice("--algo", algorithm_, {"sm2", "rsa"}, "Algorithm (sm2)")
            .number("--bits N", bits_, "Key size: 256 for SM2, 1024 or 2048 for RSA (2048)", 256,
                    2048)
            .text("-l,--label LABEL", label_, "The label, the name of a new container")
            .required();
        pin_.describe(arguments);
    }
    void run(Context &context) override;

private:
    void settleBits();

    std::string algorithm_ = "sm2";
    int bits_ = 0;
    std::string label_;
    PinSource pin_{"pin", "User PIN"};
};

// Tested before the token makes a container for a key that it then refuses.
void KeyGenerate::settleBits() {
    const bool rsa = algorithm_ == "rsa";
    if (bits_ == 0)
        bits_ = rsa ? 2048 : 256;
    if (rsa ? bits_ != 1024 && bits_ != 2048 : bits_ != 256)
        throw Failure(ExitCode::Usage, tr("Keys are SM2 with 256 or RSA with 1024 or 2048 bits"));
}

void KeyGenerate::run(Context &context) {
    settleBits();
    const bool rsa = algorithm_ == "rsa";
    const TembraEccParam curve = {ORVEL_PKI_ECC_CURVE_SM2, 0};
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    logIn(device, pin_);
    SPI_KEYPAIR_HANDLE handle = nullptr;
    check("DeviceGenerateKeypair",
          session->DeviceGenerateKeypair(
              device.get(), rsa ? ORVEL_PKI_ALGORITHM_RSA : ORVEL_PKI_ALGORITHM_ECC, bits_,
              rsa ? nullptr : &curve, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, label_.c_str(), &handle));
    const KeyPair pair(session, handle);
    context.console.result(
        Record()
            .add("label", label_)
            .add("type", "sign")
            .add("algorithm", algorithm_)
            .add("bits", bits_),
        tr("Key pair {1} generated ({2}, {3} bits)", {label_, algorithm_, std::to_string(bits_)}));
}

} // namespace

const CommandEntry keyGenerateCommand = {
    "key generate", "Generate a signature key pair on the token",
    "Encryption key pairs are brought by key import into a container with a signature key pair.",
    "  tembrakey key generate --label alice\n"
    "  tembrakey key generate --algo rsa --bits 2048 --label bob --pin-env PIN",
    make<KeyGenerate>};

} // namespace tembra::tool
