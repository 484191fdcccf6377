#include "tembrakey/doctor/tokens.h"
#include "tembrakey/formats/certificate.h"
#include "tembrakey/io/failure.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

void examineCertificate(Report &report, const std::string &token, const KeyPair &pair) {
    const crypto::Bytes der = certificateDer(pair);
    if (der.empty())
        return;
    const auto certificate = parseCertificate(der);
    const std::string name =
        tr("certificate of {1} ({2})", {label(pair), std::string(typeName(pair))});
    const char *fault = nullptr;
    if (!certificate)
        fault = N_("is not X.509");
    else if (certificate->notAfter < currentTime())
        fault = N_("is expired");
    else if (certificate->notBefore > currentTime())
        fault = N_("is not yet valid");
    else if (certificate->key != publicKey(pair))
        fault = N_("is for another key");
    if (fault != nullptr)
        report.warn(Section::tokens, token, name + " " + tr(fault),
                    tr("store a new one with cert import"));
}

} // namespace

void examineProvider(Report &report, const Checkpoint &reached, int tokens) {
    const std::string advice =
        tr("its trace log has the token's own results (tembrakey trace --errors)");
    try {
        reached(tr("the provider"), "DeviceGetAllDevices");
        const Session session("");
        const DeviceSet set = allDevices(session);
        const int count = session->DeviceGetDeviceCount(set.get());
        const std::string listed = tr("starts and lists {1} tokens", {std::to_string(count)});
        if (count == tokens)
            report.ok(Section::provider, tr("provider"), listed, {{"devices", count}});
        else
            report.fail(Section::provider, tr("provider"),
                        tr("{1}, but {2} can be reached", {listed, std::to_string(tokens)}), advice,
                        {{"devices", count}});
        for (int i = 0; i < count; ++i) {
            const Device device(session, session->DeviceGetDevice(set.get(), i));
            const int pairs = session->DeviceGetKeypairCount(device.get());
            for (int k = 0; k < pairs; ++k)
                examineCertificate(report, displayName(device),
                                   KeyPair(session, session->DeviceGetKeypair(device.get(), k)));
        }
    } catch (const Failure &failure) {
        report.fail(Section::provider, tr("provider"), failure.what(), advice);
    }
}

} // namespace tembra::tool::doctor
