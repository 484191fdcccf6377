#include "provider/certificate_reader.h"

#include "log/trace.h"
#include "provider/certificate_cache.h"

#include <climits>

namespace tembra {

int GetCertificate(HCONTAINER hCon, int bSignFlag, Certificate **cert, int *certlen) {
    *cert = nullptr;
    ULONG length = 0;
    ULONG rv = SKF_ExportCertificate(hCon, bSignFlag, nullptr, &length);
    if (rv != SAR_OK) {
        TRACE_ERROR("SKF_ExportCertificate fail, error = 0x%08X", rv);
        return 0;
    }
    const ULONG announced = length;
    Certificate *certificate = announced <= INT_MAX ? allocateCertificate(announced) : nullptr;
    if (!certificate) {
        TRACE_ERROR("*certblob == 0");
        return 0;
    }
    rv = SKF_ExportCertificate(hCon, bSignFlag, bytesOf(certificate), &length);
    if (rv != SAR_OK || length > announced) {
        releaseCertificate(certificate);
        if (rv != SAR_OK)
            TRACE_ERROR("SKF_ExportCertificate fail, error = 0x%08X", rv);
        else
            TRACE_ERROR("SKF_ExportCertificate length %u > %u", length, announced);
        return 0;
    }
    TRACE_HEX("*certblob[length:%d]: %s", bytesOf(certificate), static_cast<int>(length));
    *cert = certificate;
    *certlen = static_cast<int>(length);
    return 1;
}

} // namespace tembra
