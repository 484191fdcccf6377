#include "tembrakey/commands/cipher_job.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/provider/devices.h"

namespace tembra::tool {

namespace {

class Encrypt final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", file_, "The file to encrypt (- is standard input)").required();
        cipher_.describe(arguments);
        arguments.text("-o,--out FILE", out_, "Where the ciphertext goes (else standard output)");
    }
    void run(Context &context) override {
        requireSeparateOutput(context.console, out_);
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        reportOutput(context.console, runCipher(device, cipher_, true, file_, out_), out_);
    }

private:
    std::string file_;
    CipherChoice cipher_;
    std::string out_ = "-";
};

} // namespace

const CommandEntry encryptCommand = {
    "encrypt", "Encrypt a file on the token with a raw key", "",
    "  tembrakey encrypt disk.img --key-file key.bin --iv $IV --out disk.sm4\n"
    "  tembrakey encrypt letter.txt --algo sm4-ecb --pad --key-file key.bin --out letter.sm4",
    make<Encrypt>};

} // namespace tembra::tool
