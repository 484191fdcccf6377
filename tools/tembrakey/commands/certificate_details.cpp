#include "tembrakey/commands/certificate_details.h"

#include "tembrakey/text/text.h"

namespace tembra::tool {

Json detailsOf(const Certificate &certificate) {
    return {{"bytes", certificate.der.size()},    {"subject", certificate.subject},
            {"issuer", certificate.issuer},       {"serial", certificate.serial},
            {"notBefore", certificate.notBefore}, {"notAfter", certificate.notAfter}};
}

std::string detailsText(const Certificate &certificate, const std::string &indentation) {
    const std::string now = currentTime();
    const char *state = certificate.notAfter < now    ? N_(" (expired)")
                        : certificate.notBefore > now ? N_(" (not yet valid)")
                                                      : "";
    return indentation + tr("issuer {1}", {certificate.issuer}) + "\n" + indentation +
           tr("serial number {1}", {certificate.serial}) + "\n" + indentation +
           tr("valid from {1} to {2} UTC", {certificate.notBefore, certificate.notAfter}) +
           tr(state);
}

} // namespace tembra::tool
