// Random numbers from the token.
#include "log/trace.h"
#include "provider/lock.h"
#include "provider/records.h"

using namespace tembra;

int DeviceGenerateRandom(SPI_DEVICE_HANDLE hDevice, int len, unsigned char *rand) {
    const call_stack_tracer tracer("DeviceGenerateRandom");
    TRACE_INFO("hDevice = %p, int len = %d, unsigned char *rand = %p", static_cast<void *>(hDevice),
               len, static_cast<void *>(rand));
    if (!hDevice || len < 0 || (len > 0 && !rand))
        return TEMBRA_FAILURE;
    ProviderLock lock;
    const ULONG rv = SKF_GenRandom(hDevice->m_hDev, rand, static_cast<ULONG>(len));
    lock.leave();
    if (rv != SAR_OK) {
        TRACE_ERROR("SKF_GenRandom fail, error = 0x%08X", rv);
        return TEMBRA_FAILURE;
    }
    return TEMBRA_SUCCESS;
}
