#include "provider/certificate_reader.h"

#include "log/trace.h"
#include "platform/memory.h"

#include <climits>
#include <cstdlib>

namespace tembra {

int GetCertificate(HCONTAINER hCon, int bSignFlag, unsigned char **cert, int *certlen) {
    *cert = nullptr;
    ULONG length = 0;
    ULONG rv = SKF_ExportCertificate(hCon, bSignFlag, nullptr, &length);
    if (rv != SAR_OK) {
        TRACE_ERROR("SKF_ExportCertificate fail, error = 0x%08X", rv);
        return 0;
    }
    const ULONG announced = length;
    void *bytes = announced <= INT_MAX ? allocateZeroed(announced) : nullptr;
    if (!bytes) {
        TRACE_ERROR("*certblob == 0");
        return 0;
    }
    auto *certblob = static_cast<unsigned char *>(bytes);
    rv = SKF_ExportCertificate(hCon, bSignFlag, certblob, &length);
    if (rv != SAR_OK || length > announced) {
        std::free(certblob);
        TRACE_ERROR("SKF_ExportCertificate fail, error = 0x%08X", rv);
        return 0;
    }
    TRACE_HEX("*certblob[length:%d]: %s", certblob, static_cast<int>(length));
    *cert = certblob;
    *certlen = static_cast<int>(length);
    return 1;
}

} // namespace tembra
