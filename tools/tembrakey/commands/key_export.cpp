#include "crypto/pem.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/io/files.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class KeyExport final : public Command {
public:
    void describe(Arguments &arguments) override {
        m_key.describe(arguments, true);
        arguments.text("-o,--out FILE", m_out, "Where the PEM goes (else standard output)");
    }
    void run(Context &context) override;

private:
    KeyPairChoice m_key;
    std::string m_out;
};

void KeyExport::run(Context &context) {
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    const KeyPair pair = chooseKeyPair(device, m_key);
    const std::string pem = crypto::encodePem("PUBLIC KEY", publicKeyDer(pair));
    Record record;
    record.add("label", label(pair)).add("type", m_key.type).add("algorithm", algorithmName(pair));
    if (m_out.empty()) {
        context.console.result(record.add("pem", pem), pem.substr(0, pem.size() - 1));
        return;
    }
    writeWhole(m_out, crypto::asBytes(pem));
    if (m_out != "-")
        context.console.result(record.add("out", m_out), tr("Public key written to {1}", {m_out}));
}

} // namespace

const CommandEntry keyExportCommand = {
    "key export", "Export a public key as PEM SubjectPublicKeyInfo", "",
    "  tembrakey key export --label alice --out alice.pem\n"
    "  tembrakey key export --label alice --type encrypt | openssl pkey -pubin -text -noout",
    make<KeyExport>};

} // namespace tembra::tool
