#include "tembrakey/commands/commands.h"
#include "tembrakey/formats/enveloped_key.h"
#include "tembrakey/formats/pem_files.h"
#include "tembrakey/io/files.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class KeyEnvelope final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", file_, "The private key to envelope, unencrypted PEM")
            .required()
            .text("--to FILE", container_, "The container's public signature key, PEM or DER")
            .required()
            .text("-o,--out FILE", out_, "Where the blob goes")
            .required()
            .flag("--gdk", gdk_, "SM2: the 48-byte form of the private key instead of 32 bytes");
    }
    void run(Context &context) override {
        const auto form = gdk_ ? Sm2PrivateForm::Gdk : Sm2PrivateForm::Plain;
        const crypto::PrivateKey key = readPrivateKey(file_, readWhole(file_));
        const crypto::Bytes blob = envelopeKeyPair(key, readPublicKey(container_), form);
        writeWhole(out_, blob);
        const std::string bytes = std::to_string(blob.size());
        context.console.result(
            Record().add("out", out_).add("bytes", static_cast<int>(blob.size())),
            tr("Enveloped key pair written to {1} ({2} bytes)", {out_, bytes}));
    }

private:
    std::string file_;
    std::string container_;
    std::string out_;
    bool gdk_ = false;
};

} // namespace

const CommandEntry keyEnvelopeCommand = {
    "key envelope", "Envelope a key pair for a container, as a key management centre does",
    "Needs no token: only the container's public key, as key export writes it. The private key is\n"
    "encrypted with SMS4, the symmetric key to the container's key.",
    "  tembrakey key export --label alice --out alice.pem\n"
    "  tembrakey key envelope enc.pem --to alice.pem --out alice.env\n"
    "  tembrakey key import alice.env --label alice",
    make<KeyEnvelope>};

} // namespace tembra::tool
