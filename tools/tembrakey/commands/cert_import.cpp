#include "tembrakey/commands/commands.h"
#include "tembrakey/formats/certificate.h"
#include "tembrakey/formats/pem_files.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class CertImport final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "An X.509 certificate, PEM or DER").required();
        m_key.describe(arguments, true);
        m_pin.describe(arguments);
    }
    void run(Context &context) override {
        const crypto::Bytes der = readCertificate(m_file);
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        const KeyPair pair = chooseKeyPair(device, m_key);
        logIn(device, m_pin);
        check("DeviceUpdateCertificate", session->DeviceUpdateCertificate(
                                             pair.get(), der.data(), static_cast<int>(der.size())));
        const std::string subject = certificateSubject(der).value_or("");
        context.console.result(
            Record().add("label", label(pair)).add("type", m_key.type).add("subject", subject),
            tr("Certificate of {1} stored with {2}", {subject, label(pair)}));
    }

private:
    std::string m_file;
    KeyPairChoice m_key;
    PinSource m_pin{"pin", "User PIN"};
};

} // namespace

const CommandEntry certImportCommand = {
    "cert import", "Store a certificate with a key pair, in place of an earlier one", "",
    "  tembrakey cert import alice.crt --label alice --pin-env PIN\n"
    "  tembrakey cert import alice-enc.crt --label alice --type encrypt",
    make<CertImport>};

} // namespace tembra::tool
