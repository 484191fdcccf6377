#include <string_view>

#include "crypto/key_pair_blob.h"
#include "tembrakey/commands/device_command.h"
#include "tembrakey/commands/options.h"
#include "tembrakey/formats/enveloped_key.h"
#include "tembrakey/formats/pem_files.h"

namespace tembra::tool {

namespace {

class KeyImport final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "enveloped key pair blob, or unencrypted PEM private key")
            .required()
            .text("-l,--label LABEL", m_label, "label of the container with the signature key pair")
            .required();
        m_login.declare(arguments);
    }

private:
    void prepare(const Console &) override;
    void work(const Console &console, const Device &device) override;

    std::string m_file;
    std::string m_label;
    LoginOption m_login;
    crypto::SecretBytes m_blob;
};

// The provider takes both blob forms; a PEM key becomes a plain key pair blob.
void KeyImport::prepare(const Console &) {
    m_blob = readWhole(m_file);
    const std::string_view text = crypto::asText(m_blob);
    if (text.starts_with("SCAENCKP") || text.starts_with("_KEYPAIR"))
        return;
    m_blob = crypto::encodeKeyPairBlob(readPrivateKey(m_file, m_blob));
    if (m_blob.empty())
        throw Failure(ExitCode::usage,
                      tr("{1}: RSA keys must have 1024 or 2048 bits", {inputName(m_file)}));
}

void KeyImport::work(const Console &console, const Device &device) {
    const Session &session = device.session();
    chooseKeyPair(device, {m_label, "sign"}); // fails with a clearer message than the import
    m_login.logIn(device);
    SPI_KEYPAIR_HANDLE handle = nullptr;
    const WithoutSecrets guard;
    check("DeviceImportKeypair",
          session->DeviceImportKeypair(device.get(), m_blob.data(), static_cast<int>(m_blob.size()),
                                       ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, m_label.c_str(), &handle),
          {TEMBRA_FAILURE,
           tr("the key pair may be for another container or of another algorithm than this one")});
    const KeyPair pair(session, handle);
    const int bits = session->DeviceGetKeypairBits(pair.get());
    console.result({{"label", m_label},
                    {"type", "encrypt"},
                    {"algorithm", algorithmName(pair)},
                    {"bits", bits}},
                   tr("Encryption key pair imported into {1} ({2}, {3} bits)",
                      {m_label, algorithmName(pair), std::to_string(bits)}));
}

class KeyEnvelope final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "private key to envelope, unencrypted PEM")
            .required()
            .text("--to FILE", m_container, "public signature key of the container, PEM or DER")
            .required();
        m_out.declare(arguments, N_("write the blob to this file"));
        arguments.required().flag(
            "--gdk", m_gdk, "SM2: use the 48-byte form of the private key instead of 32 bytes");
    }
    void run(Context &context) override {
        m_out.requireNoInput({m_file, m_container});
        const auto form = m_gdk ? Sm2PrivateForm::gdk : Sm2PrivateForm::plain;
        const crypto::PrivateKey key = readPrivateKey(m_file, readWhole(m_file));
        const crypto::Bytes blob = envelopeKeyPair(key, readPublicKey(m_container), form);
        writeWhole(m_out.path(), blob);
        m_out.report(context.console, {{"bytes", blob.size()}},
                     N_("Enveloped key pair written to {1}"));
    }

private:
    std::string m_file;
    std::string m_container;
    OutputOption m_out;
    bool m_gdk = false;
};

} // namespace

const CommandEntry keyImportCommand = {
    "key import", N_("Import an encryption key pair into the token"),
    N_("The container must hold a signature key pair of the same algorithm. A PEM key (PKCS #8, "
       "PKCS\n"
       "#1 or SEC 1) is enveloped by the provider; an enveloped blob comes from a key management\n"
       "centre or from key envelope."),
    "  tembrakey key import alice.env --label alice --pin-env PIN\n"
    "  openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:SM2 -out enc.pem\n"
    "  tembrakey key import enc.pem --label alice",
    make<KeyImport>};

const CommandEntry keyEnvelopeCommand = {
    "key envelope", N_("Envelope a key pair for a container, as a key management centre would"),
    N_("Needs no token: only the container's public key, as key export writes it. The private key "
       "is\n"
       "encrypted with SMS4, the symmetric key to the container's key."),
    "  tembrakey key export --label alice --out alice.pem\n"
    "  tembrakey key envelope enc.pem --to alice.pem --out alice.env\n"
    "  tembrakey key import alice.env --label alice",
    make<KeyEnvelope>};

} // namespace tembra::tool
