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
        arguments.text("FILE", file_, "An X.509 certificate, PEM or DER").required();
        key_.describe(arguments, true);
        pin_.describe(arguments);
    }
    void run(Context &context) override {
        const crypto::Bytes der = readCertificate(file_);
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        const KeyPair pair = chooseKeyPair(device, key_);
        logIn(device, pin_);
        check("DeviceUpdateCertificate", session->DeviceUpdateCertificate(
                                             pair.get(), der.data(), static_cast<int>(der.size())));
        const std::string subject = certificateSubject(der).value_or("");
        context.console.result(
            Record().add("label", label(pair)).add("type", key_.type).add("subject", subject),
            tr("Certificate of {1} stored with {2}", {subject, label(pair)}));
    }

private:
    std::string file_;
    KeyPairChoice key_;
    PinSource pin_{"pin", "User PIN"};
};

} // namespace

const CommandEntry certImportCommand = {
    "cert import", "Store a certificate with a key pair, in place of an earlier one", "",
    "  tembrakey cert import alice.crt --label alice --pin-env PIN\n"
    "  tembrakey cert import alice-enc.crt --label alice --type encrypt",
    make<CertImport>};

} // namespace tembra::tool
