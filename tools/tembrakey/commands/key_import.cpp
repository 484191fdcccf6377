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
            .text("FILE", file_, "An enveloped key pair blob, or an unencrypted PEM private key")
            .required()
            .text("-l,--label LABEL", label_, "The container with the signature key pair")
            .required();
        pin_.describe(arguments);
    }
    void run(Context &context) override;

private:
    crypto::SecretBytes blob() const;

    std::string file_;
    std::string label_;
    PinSource pin_{"pin", "User PIN"};
};

bool beginsWith(crypto::ByteView bytes, std::string_view text) {
    return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
}

// What the provider takes: both blob forms as they are, a PEM key as a plain key pair blob.
crypto::SecretBytes KeyImport::blob() const {
    crypto::SecretBytes content = readWhole(file_);
    if (beginsWith(content, "SCAENCKP") || beginsWith(content, "_KEYPAIR"))
        return content;
    auto plain = crypto::encodeKeyPairBlob(readPrivateKey(file_, content));
    if (plain.empty())
        throw Failure(ExitCode::Usage, tr("{1}: RSA keys must have 1024 or 2048 bits", {file_}));
    return plain;
}

void KeyImport::run(Context &context) {
    const crypto::SecretBytes keyPair = blob();
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    chooseKeyPair(device, {label_, "sign"}); // says it better than the import would
    logIn(device, pin_);
    SPI_KEYPAIR_HANDLE handle = nullptr;
    check("DeviceImportKeypair", session->DeviceImportKeypair(
                                     device.get(), keyPair.data(), static_cast<int>(keyPair.size()),
                                     ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, label_.c_str(), &handle));
    const KeyPair pair(session, handle);
    const int bits = session->DeviceGetKeypairBits(pair.get());
    context.console.result(Record()
                               .add("label", label_)
                               .add("type", "encrypt")
                               .add("algorithm", algorithmName(pair))
                               .add("bits", bits),
                           tr("Encryption key pair imported into {1} ({2}, {3} bits)",
                              {label_, algorithmName(pair), std::to_string(bits)}));
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
