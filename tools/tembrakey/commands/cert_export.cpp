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
        key_.describe(arguments, true);
        arguments.flag("--der", der_, "Write DER instead of PEM (with --out)")
            .text("-o,--out FILE", out_, "Where the certificate goes (else standard output)");
    }
    void run(Context &context) override;

private:
    static crypto::Bytes certificateOf(const KeyPair &pair);

    KeyPairChoice key_;
    bool der_ = false;
    std::string out_;
};

crypto::Bytes CertExport::certificateOf(const KeyPair &pair) {
    const Session &session = pair.session();
    if (session->DeviceGetCertificateCount(pair.get()) <= 0)
        throw Failure(ExitCode::NotFound, tr("{1} has no certificate of this type", {label(pair)}));
    return readBytes("DeviceGetCertificate", [&](auto *buffer, int capacity, int *length) {
        return session->DeviceGetCertificate(pair.get(), 0, buffer, capacity, length);
    });
}

void CertExport::run(Context &context) {
    if (der_ && out_.empty())
        throw Failure(ExitCode::Usage, tr("--der needs --out FILE (- is standard output)"));
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    const KeyPair pair = chooseKeyPair(device, key_);
    const crypto::Bytes der = certificateOf(pair);
    const std::string pem = crypto::encodePem("CERTIFICATE", der);
    Record record;
    record.add("label", label(pair))
        .add("type", key_.type)
        .add("subject", certificateSubject(der).value_or(""));
    if (out_.empty()) {
        context.console.result(record.add("pem", pem), pem.substr(0, pem.size() - 1));
        return;
    }
    writeWhole(out_, der_ ? crypto::ByteView(der) : crypto::asBytes(pem));
    if (out_ != "-")
        context.console.result(record.add("out", out_), tr("Certificate written to {1}", {out_}));
}

} // namespace

const CommandEntry certExportCommand = {
    "cert export", "Read a certificate from the token", "",
    "  tembrakey cert export --label alice --out alice.crt\n"
    "  tembrakey cert export --label alice --type encrypt | openssl x509 -text -noout",
    make<CertExport>};

} // namespace tembra::tool
