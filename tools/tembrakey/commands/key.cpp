#include "crypto/pem.h"
#include "tembrakey/commands/device_command.h"
#include "tembrakey/commands/options.h"

namespace tembra::tool {

namespace {

constexpr std::size_t LONGEST_LABEL = 63; // of the containers of most tokens

class KeyGenerate final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.choice("--algo", m_algorithm, "algorithm (default: sm2)", {"sm2", "rsa"})
            .number("--bits N", m_bits,
                    "key size: 256 for SM2, 1024 or 2048 for RSA (default: 2048)", 256, 2048)
            .text("-l,--label LABEL", m_label, "label of the key, the name of its new container")
            .required();
        m_login.declare(arguments);
    }

private:
    void prepare(const Console &) override;
    void work(const Console &console, const Device &device) override;

    std::string m_algorithm = "sm2";
    int m_bits = 0;
    std::string m_label;
    LoginOption m_login;
};

// Checked here, before the token makes a container for a key that it then refuses.
void KeyGenerate::prepare(const Console &) {
    const bool rsa = m_algorithm == "rsa";
    if (m_bits == 0)
        m_bits = rsa ? 2048 : 256;
    if (rsa ? m_bits != 1024 && m_bits != 2048 : m_bits != 256)
        throw Failure(ExitCode::usage,
                      tr("key size not supported: SM2 has 256 bits, RSA 1024 or 2048"));
}

void KeyGenerate::work(const Console &console, const Device &device) {
    const bool rsa = m_algorithm == "rsa";
    const TembraEccParam curve = {ORVEL_PKI_ECC_CURVE_SM2, 0};
    m_login.logIn(device);
    SPI_KEYPAIR_HANDLE handle = nullptr;
    check("DeviceGenerateKeypair",
          device.session()->DeviceGenerateKeypair(
              device.get(), rsa ? ORVEL_PKI_ALGORITHM_RSA : ORVEL_PKI_ALGORITHM_ECC, m_bits,
              rsa ? nullptr : &curve, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, m_label.c_str(), &handle),
          {TEMBRA_FAILURE, tr(m_label.size() > LONGEST_LABEL
                                  ? "the label is longer than 63 bytes"
                                  : "the token may be full, or does not make such keys")});
    const KeyPair pair(device.session(), handle);
    console.result(
        {{"label", m_label}, {"type", "sign"}, {"algorithm", m_algorithm}, {"bits", m_bits}},
        tr("Key pair {1} generated ({2}, {3} bits)",
           {m_label, m_algorithm, std::to_string(m_bits)}));
}

class KeyDelete final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.text("-l,--label LABEL", m_label, "label of the container to delete")
            .required()
            .flag("--yes", m_yes, "do not ask");
        m_login.declare(arguments);
    }

private:
    void prepare(const Console &console) override {
        console.requireConsent(
            m_yes, tr("Delete {1} with all its keys and certificates from the token?", {m_label}));
    }
    void work(const Console &console, const Device &device) override;

    std::string m_label;
    bool m_yes = false;
    LoginOption m_login;
};

void KeyDelete::work(const Console &console, const Device &device) {
    const Session &session = device.session();
    SPI_KEYPAIR_HANDLE handle = nullptr;
    const bool hasEncryptionPair =
        session->DeviceFindKeypair(device.get(), ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, m_label.c_str(),
                                   &handle) == TEMBRA_SUCCESS;
    const KeyPair pair =
        hasEncryptionPair ? KeyPair(session, handle) : chooseKeyPair(device, {m_label, "sign"});
    m_login.logIn(device);
    check("DeviceDeleteKeypair", session->DeviceDeleteKeypair(pair.get()));
    console.result({{"label", m_label}, {"deleted", true}}, tr("Container {1} deleted", {m_label}));
}

class KeyExport final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        declareKeyPair(arguments, m_key);
        m_out.declare(arguments, N_("write the PEM to this file (default: standard output)"));
    }

private:
    void work(const Console &console, const Device &device) override {
        const KeyPair pair = chooseKeyPair(device, m_key);
        const std::string pem = crypto::encodePem("PUBLIC KEY", publicKeyDer(pair));
        m_out.deliver(
            console,
            {{"label", label(pair)}, {"type", m_key.type}, {"algorithm", algorithmName(pair)}},
            crypto::asBytes(pem), N_("Public key written to {1}"), "pem", pem);
    }

    KeyPairChoice m_key;
    OutputOption m_out;
};

} // namespace

const CommandEntry keyGenerateCommand = {
    "key generate", N_("Generate a signature key pair on the token"),
    N_("Encryption key pairs are brought by key import into a container with a signature key "
       "pair."),
    "  tembrakey key generate --label alice\n"
    "  tembrakey key generate --algo rsa --bits 2048 --label bob --pin-env PIN",
    make<KeyGenerate>};

const CommandEntry keyDeleteCommand = {
    "key delete", N_("Delete a container with both its key pairs and certificates"), "",
    "  tembrakey key delete --label alice\n"
    "  tembrakey key delete --label alice --yes --pin-env PIN",
    make<KeyDelete>};

const CommandEntry keyExportCommand = {
    "key export", N_("Export a public key as PEM SubjectPublicKeyInfo"), "",
    "  tembrakey key export --label alice --out alice.pem\n"
    "  tembrakey key export --label alice --type encrypt | openssl pkey -pubin -text -noout",
    make<KeyExport>};

} // namespace tembra::tool
