#include "provider/lifecycle.h"

#include "log/trace.h"
#include "platform/orvel_crypto.h"
#include "provider/lock.h"
#include "provider/settings.h"
#include "tembra_key_prov.h"

namespace tembra {

void *g_pseudoDevice = nullptr;
platform::CriticalSection g_lock;

} // namespace tembra

using namespace tembra;

int DeviceInit(void) {
    const call_stack_tracer tracer("DeviceInit");
    g_hasSM3 = hasSM3();
    TRACE_INFO("hasSM3 : %d", static_cast<int>(g_hasSM3));
    g_hasSM4 = hasSM4();
    TRACE_INFO("hasSM4 : %d", static_cast<int>(g_hasSM4));
    g_maxOperationLen = getMaxOperationLen();
    TRACE_INFO("getMaxOperationLen : %d", g_maxOperationLen);
    g_supportGDKMSM2Import = isSupportGDKMSM2Import();
    TRACE_INFO("isSupportGDKMSM2Import : %d", static_cast<int>(g_supportGDKMSM2Import));

    g_pseudoDevice = OrvelPKICryptoGetPseudoDevice();
    if (!g_pseudoDevice) {
        TRACE_ERROR("OrvelPKICryptoGetPseudoDevice fail");
        return TEMBRA_FAILURE;
    }
    g_lock.create();
    return TEMBRA_SUCCESS;
}

int DeviceEnd(void) {
    const call_stack_tracer tracer("DeviceEnd");
    OrvelPKICryptoFreeDevice(g_pseudoDevice);
    g_pseudoDevice = nullptr;
    g_lock.remove();
    return TEMBRA_SUCCESS;
}
