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
        arguments.choice("--algo", m_algorithm, {"sm2", "rsa"}, "Algorithm (sm2)")
            .number("--bits N", m_bits, "Key size: 256 for SM2, 1024 or 2048 for RSA (2048)", 256,
                    2048)
            .text("-l,--label LABEL", m_label, "The label, the name of a new container")
            .required();
        m_pin.describe(arguments);
    }
    void run(Context &context) override;

private:
    void settleBits();

    std::string m_algorithm = "sm2";
    int m_bits = 0;
    std::string m_label;
    PinSource m_pin{"pin", "User PIN"};
};

// Tested before the token makes a container for a key that it then refuses.
void KeyGenerate::settleBits() {
    const bool rsa = m_algorithm == "rsa";
    if (m_bits == 0)
        m_bits = rsa ? 2048 : 256;
    if (rsa ? m_bits != 1024 && m_bits != 2048 : m_bits != 256)
        throw Failure(ExitCode::usage, tr("Keys are SM2 with 256 or RSA with 1024 or 2048 bits"));
}

void KeyGenerate::run(Context &context) {
    settleBits();
    const bool rsa = m_algorithm == "rsa";
    const TembraEccParam curve = {ORVEL_PKI_ECC_CURVE_SM2, 0};
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    logIn(device, m_pin);
    SPI_KEYPAIR_HANDLE handle = nullptr;
    check("DeviceGenerateKeypair",
          session->DeviceGenerateKeypair(
              device.get(), rsa ? ORVEL_PKI_ALGORITHM_RSA : ORVEL_PKI_ALGORITHM_ECC, m_bits,
              rsa ? nullptr : &curve, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, m_label.c_str(), &handle));
    const KeyPair pair(session, handle);
    context.console.result(Record()
                               .add("label", m_label)
                               .add("type", "sign")
                               .add("algorithm", m_algorithm)
                               .add("bits", m_bits),
                           tr("Key pair {1} generated ({2}, {3} bits)",
                              {m_label, m_algorithm, std::to_string(m_bits)}));
}

} // namespace

const CommandEntry keyGenerateCommand = {
    "key generate", "Generate a signature key pair on the token",
    "Encryption key pairs are brought by key import into a container with a signature key pair.",
    "  tembrakey key generate --label alice\n"
    "  tembrakey key generate --algo rsa --bits 2048 --label bob --pin-env PIN",
    make<KeyGenerate>};

} // namespace tembra::tool
