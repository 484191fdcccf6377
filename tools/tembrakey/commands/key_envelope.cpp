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
        arguments.text("FILE", m_file, "The private key to envelope, unencrypted PEM")
            .required()
            .text("--to FILE", m_container, "The container's public signature key, PEM or DER")
            .required()
            .text("-o,--out FILE", m_out, "Where the blob goes")
            .required()
            .flag("--gdk", m_gdk, "SM2: the 48-byte form of the private key instead of 32 bytes");
    }
    void run(Context &context) override {
        const auto form = m_gdk ? Sm2PrivateForm::gdk : Sm2PrivateForm::plain;
        const crypto::PrivateKey key = readPrivateKey(m_file, readWhole(m_file));
        const crypto::Bytes blob = envelopeKeyPair(key, readPublicKey(m_container), form);
        writeWhole(m_out, blob);
        const std::string bytes = std::to_string(blob.size());
        context.console.result(
            Record().add("out", m_out).add("bytes", static_cast<int>(blob.size())),
            tr("Enveloped key pair written to {1} ({2} bytes)", {m_out, bytes}));
    }

private:
    std::string m_file;
    std::string m_container;
    std::string m_out;
    bool m_gdk = false;
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
