#include "crypto/pem.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/formats/certificate.h"
#include "tembrakey/io/files.h"
#include "tembrakey/provider/buffers.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class CertExport final : public Command {
public:
    void describe(Arguments &arguments) override {
        m_key.describe(arguments, true);
        arguments.flag("--der", m_der, "Write DER instead of PEM (with --out)")
            .text("-o,--out FILE", m_out, "Where the certificate goes (else standard output)");
    }
    void run(Context &context) override;

private:
    static crypto::Bytes certificateOf(const KeyPair &pair);

    KeyPairChoice m_key;
    bool m_der = false;
    std::string m_out;
};

crypto::Bytes CertExport::certificateOf(const KeyPair &pair) {
    const Session &session = pair.session();
    if (session->DeviceGetCertificateCount(pair.get()) <= 0)
        throw Failure(ExitCode::notFound, tr("{1} has no certificate of this type", {label(pair)}));
    return readBytes("DeviceGetCertificate", [&](auto *buffer, int capacity, int *length) {
        return session->DeviceGetCertificate(pair.get(), 0, buffer, capacity, length);
    });
}

void CertExport::run(Context &context) {
    if (m_der && m_out.empty())
        throw Failure(ExitCode::usage, tr("--der needs --out FILE (- is standard output)"));
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    const KeyPair pair = chooseKeyPair(device, m_key);
    const crypto::Bytes der = certificateOf(pair);
    const std::string pem = crypto::encodePem("CERTIFICATE", der);
    Record record;
    record.add("label", label(pair))
        .add("type", m_key.type)
        .add("subject", certificateSubject(der).value_or(""));
    if (m_out.empty()) {
        context.console.result(record.add("pem", pem), pem.substr(0, pem.size() - 1));
        return;
    }
    writeWhole(m_out, m_der ? crypto::ByteView(der) : crypto::asBytes(pem));
    if (m_out != "-")
        context.console.result(record.add("out", m_out), tr("Certificate written to {1}", {m_out}));
}

} // namespace

const CommandEntry certExportCommand = {
    "cert export", "Read a certificate from the token", "",
    "  tembrakey cert export --label alice --out alice.crt\n"
    "  tembrakey cert export --label alice --type encrypt | openssl x509 -text -noout",
    make<CertExport>};

} // namespace tembra::tool
