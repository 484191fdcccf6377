#include "tembrakey/commands/cipher_job.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/provider/devices.h"

namespace tembra::tool {

namespace {

class Encrypt final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "The file to encrypt (- is standard input)").required();
        m_cipher.describe(arguments);
        arguments.text("-o,--out FILE", m_out, "Where the ciphertext goes (else standard output)");
    }
    void run(Context &context) override {
        requireSeparateOutput(context.console, m_out);
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        reportOutput(context.console, runCipher(device, m_cipher, true, m_file, m_out), m_out);
    }

private:
    std::string m_file;
    CipherChoice m_cipher;
    std::string m_out = "-";
};

} // namespace

const CommandEntry encryptCommand = {
    "encrypt", "Encrypt a file on the token with a raw key", "",
    "  tembrakey encrypt disk.img --key-file key.bin --iv $IV --out disk.sm4\n"
    "  tembrakey encrypt letter.txt --algo sm4-ecb --pad --key-file key.bin --out letter.sm4",
    make<Encrypt>};

} // namespace tembra::tool
