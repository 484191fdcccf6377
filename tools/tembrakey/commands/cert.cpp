#include "crypto/pem.h"
#include "tembrakey/commands/certificate_details.h"
#include "tembrakey/commands/device_command.h"
#include "tembrakey/commands/options.h"
#include "tembrakey/formats/pem_files.h"

namespace tembra::tool {

namespace {

// Throws Failure when there is no certificate.
crypto::Bytes requiredCertificate(const KeyPair &pair) {
    crypto::Bytes der = certificateDer(pair);
    if (der.empty())
        throw Failure(ExitCode::notFound, tr("{1} has no certificate of this type", {label(pair)}));
    return der;
}

class CertShow final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override { declareKeyPair(arguments, m_key); }

private:
    void work(const Console &console, const Device &device) override {
        const KeyPair pair = chooseKeyPair(device, m_key);
        const auto certificate = parseCertificate(requiredCertificate(pair));
        if (!certificate)
            throw Failure(ExitCode::failure,
                          tr("the certificate of {1} is not X.509", {label(pair)}));
        const bool matches = certificate->key == publicKey(pair);
        Json object = detailsOf(*certificate);
        object["matchesKey"] = matches;
        const char *key =
            matches ? N_("for the key of {1}") : N_("for another key than the one of {1}");
        console.result(object, tr("subject {1}", {certificate->subject}) + "\n" +
                                   detailsText(*certificate, "") + "\n" + tr(key, {label(pair)}));
    }

    KeyPairChoice m_key;
};

class CertExport final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        declareKeyPair(arguments, m_key);
        arguments.flag("--der", m_der, "write DER instead of PEM (with --out)");
        m_out.declare(arguments,
                      N_("write the certificate to this file (default: standard output)"));
    }

private:
    void prepare(const Console &) override {
        if (m_der && !m_out.isGiven())
            throw Failure(ExitCode::usage, tr("--der needs --out FILE (- is standard output)"));
    }
    void work(const Console &console, const Device &device) override;

    KeyPairChoice m_key;
    bool m_der = false;
    OutputOption m_out;
};

void CertExport::work(const Console &console, const Device &device) {
    const KeyPair pair = chooseKeyPair(device, m_key);
    const crypto::Bytes der = requiredCertificate(pair);
    const auto certificate = parseCertificate(der);
    const std::string pem = crypto::encodePem("CERTIFICATE", der);
    m_out.deliver(console,
                  {{"label", label(pair)},
                   {"type", m_key.type},
                   {"subject", certificate ? certificate->subject : ""}},
                  m_der ? crypto::ByteView(der) : crypto::asBytes(pem),
                  N_("Certificate written to {1}"), "pem", pem);
}

class CertImport final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "X.509 certificate, PEM or DER").required();
        declareKeyPair(arguments, m_key);
        m_login.declare(arguments);
    }

private:
    void prepare(const Console &) override { m_certificate = readCertificate(m_file); }
    void work(const Console &console, const Device &device) override;

    std::string m_file;
    KeyPairChoice m_key;
    LoginOption m_login;
    Certificate m_certificate;
};

void CertImport::work(const Console &console, const Device &device) {
    const KeyPair pair = chooseKeyPair(device, m_key);
    if (m_certificate.key != publicKey(pair))
        throw Failure(ExitCode::usage, tr("{1} certifies another key than the one of {2}",
                                          {inputName(m_file), label(pair)}));
    m_login.logIn(device);
    const auto &der = m_certificate.der;
    check("DeviceUpdateCertificate", device.session()->DeviceUpdateCertificate(
                                         pair.get(), der.data(), static_cast<int>(der.size())));
    console.result(
        {{"label", label(pair)}, {"type", m_key.type}, {"subject", m_certificate.subject}},
        tr("Certificate of {1} stored with {2}", {m_certificate.subject, label(pair)}));
}

} // namespace

const CommandEntry certShowCommand = {
    "cert show", N_("Show a certificate's names, serial number and validity"),
    N_("The signature of its issuer is not checked."),
    "  tembrakey cert show --label alice\n"
    "  tembrakey cert show --label alice --type encrypt --json | jq -r .notAfter",
    make<CertShow>};

const CommandEntry certExportCommand = {
    "cert export", N_("Read a certificate from the token"), "",
    "  tembrakey cert export --label alice --out alice.crt\n"
    "  tembrakey cert export --label alice --type encrypt | openssl x509 -text -noout",
    make<CertExport>};

const CommandEntry certImportCommand = {
    "cert import", N_("Store the certificate of a key pair, replacing an earlier one"),
    N_("The certificate must be for the public key of that pair."),
    "  tembrakey cert import alice.crt --label alice --pin-env PIN\n"
    "  tembrakey cert import alice-enc.crt --label alice --type encrypt",
    make<CertImport>};

} // namespace tembra::tool
