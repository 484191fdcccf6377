#include <algorithm>
#include <string_view>

#include "crypto/key_pair_blob.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/formats/pem_files.h"
#include "tembrakey/io/files.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class KeyImport final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments
            .text("FILE", m_file, "An enveloped key pair blob, or an unencrypted PEM private key")
            .required()
            .text("-l,--label LABEL", m_label, "The container with the signature key pair")
            .required();
        m_pin.describe(arguments);
    }
    void run(Context &context) override;

private:
    crypto::SecretBytes blob() const;

    std::string m_file;
    std::string m_label;
    PinSource m_pin{"pin", "User PIN"};
};

bool beginsWith(crypto::ByteView bytes, std::string_view text) {
    return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
}

// What the provider takes: both blob forms as they are, a PEM key as a plain key pair blob.
crypto::SecretBytes KeyImport::blob() const {
    crypto::SecretBytes content = readWhole(m_file);
    if (beginsWith(content, "SCAENCKP") || beginsWith(content, "_KEYPAIR"))
        return content;
    auto plain = crypto::encodeKeyPairBlob(readPrivateKey(m_file, content));
    if (plain.empty())
        throw Failure(ExitCode::usage, tr("{1}: RSA keys must have 1024 or 2048 bits", {m_file}));
    return plain;
}

void KeyImport::run(Context &context) {
    const crypto::SecretBytes keyPair = blob();
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    chooseKeyPair(device, {m_label, "sign"}); // says it better than the import would
    logIn(device, m_pin);
    SPI_KEYPAIR_HANDLE handle = nullptr;
    check("DeviceImportKeypair", session->DeviceImportKeypair(
                                     device.get(), keyPair.data(), static_cast<int>(keyPair.size()),
                                     ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, m_label.c_str(), &handle));
    const KeyPair pair(session, handle);
    const int bits = session->DeviceGetKeypairBits(pair.get());
    context.console.result(Record()
                               .add("label", m_label)
                               .add("type", "encrypt")
                               .add("algorithm", algorithmName(pair))
                               .add("bits", bits),
                           tr("Encryption key pair imported into {1} ({2}, {3} bits)",
                              {m_label, algorithmName(pair), std::to_string(bits)}));
}

} // namespace

const CommandEntry keyImportCommand = {
    "key import", "Bring an encryption key pair to the token",
    "The container must hold a signature key pair of the same algorithm. A PEM key (PKCS #8, PKCS\n"
    "#1 or SEC 1) is enveloped by the provider; an enveloped blob comes from a key management\n"
    "centre or from key envelope.",
    "  tembrakey key import alice.env --label alice --pin-env PIN\n"
    "  openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:SM2 -out enc.pem\n"
    "  tembrakey key import enc.pem --label alice",
    make<KeyImport>};

} // namespace tembra::tool
