// Key pair handles: look-up, attributes and release.
#include "log/trace.h"
#include "provider/buffer.h"
#include "provider/keypair_table.h"
#include "provider/lock.h"

#include <cstring>

using namespace tembra;

int DeviceGetKeypairCount(SPI_DEVICE_HANDLE hDevice) {
    const call_stack_tracer tracer("DeviceGetKeypairCount");
    if (!hDevice)
        return TEMBRA_BAD_ARGUMENT;
    const int count = loadCount(hDevice->m_keypairCount);
    TRACE_DEBUG("hDevice->m_keypairCount=%d", count);
    return count;
}

SPI_KEYPAIR_HANDLE DeviceGetKeypair(SPI_DEVICE_HANDLE hDevice, int index) {
    const call_stack_tracer tracer("DeviceGetKeypair");
    if (!hDevice || index < 0 || index >= loadCount(hDevice->m_keypairCount))
        return nullptr;
    ProviderLock lock;
    Keypair *hKeypair = hDevice->m_keypairs[index]; // null if it was deleted meanwhile
    if (hKeypair)
        handOutKeypair(hDevice, hKeypair);
    lock.leave();
    TRACE_DEBUG("hKeypair=%p", static_cast<void *>(hKeypair));
    return hKeypair;
}

int DeviceFindKeypair(SPI_DEVICE_HANDLE hDevice, int type, const char *label,
                      SPI_KEYPAIR_HANDLE *phKeypair) {
    const call_stack_tracer tracer("DeviceFindKeypair");
    TRACE_INFO("hDevice = %p, int type = %d, const char *label = %s, "
               "SPI_KEYPAIR_HANDLE *phKeypair = %p",
               static_cast<void *>(hDevice), type, shown(label), static_cast<void *>(phKeypair));
    if (!hDevice) {
        TRACE_ERROR("hDevice==0, rv=0x%08X", static_cast<unsigned>(TEMBRA_NULL_HANDLE));
        return TEMBRA_NULL_HANDLE;
    }

    ProviderLock lock;
    const int count = label && phKeypair ? hDevice->m_keypairCount : 0;
    for (int i = 0; i < count; ++i) {
        Keypair *hKeypair = hDevice->m_keypairs[i];
        if (hKeypair && std::strcmp(hKeypair->m_label, label) == 0 && hKeypair->m_keytype == type) {
            handOutKeypair(hDevice, hKeypair);
            *phKeypair = hKeypair;
            return TEMBRA_SUCCESS;
        }
    }
    lock.leave();
    TRACE_ERROR("DeviceFindKeypair fail ");
    return TEMBRA_FAILURE;
}

int DeviceFreeKeypair(SPI_KEYPAIR_HANDLE hKeypair) {
    const call_stack_tracer tracer("DeviceFreeKeypair");
    TRACE_INFO("hKeypair = %p", static_cast<void *>(hKeypair));
    if (!hKeypair)
        return TEMBRA_SUCCESS;

    const ReturnedHandle returned = takeBackHandle(hKeypair);
    if (returned.hDevice) {
        TRACE_INFO("freeDevice hKeypair->m_device success, hKeypair->m_device=%p",
                   static_cast<void *>(returned.hDevice));
        DeviceFreeDevice(returned.hDevice);
        return TEMBRA_SUCCESS;
    }
    TRACE_INFO("freeDevice hKeypair success, hKeypair=%p", static_cast<void *>(hKeypair));
    if (returned.isLast)
        freeKeypair(hKeypair);
    return TEMBRA_SUCCESS;
}

int DeviceGetKeypairLabel(SPI_KEYPAIR_HANDLE hKeypair, char *label, int labellen,
                          int *pretlabellen) {
    const call_stack_tracer tracer("DeviceGetKeypairLabel");
    if (!hKeypair)
        return TEMBRA_NULL_HANDLE;
    const int length = static_cast<int>(std::strlen(hKeypair->m_label)) + 1;
    const int rv = copyOut(hKeypair->m_label, length, label, labellen, pretlabellen);
    if (rv == TEMBRA_SUCCESS && label)
        TRACE_INFO("SPI_KEYPAIR_HANDLE hKeypair = %p, char *label = %s, int labellen = %d, "
                   "int *pretlabellen = %d",
                   static_cast<void *>(hKeypair), label, labellen, shown(pretlabellen));
    return rv;
}

int DeviceGetKeypairType(SPI_KEYPAIR_HANDLE hKeypair) {
    const call_stack_tracer tracer("DeviceGetKeypairType");
    if (!hKeypair)
        return TEMBRA_BAD_ARGUMENT;
    TRACE_INFO("hKeypair->m_keytype = %d", hKeypair->m_keytype);
    return hKeypair->m_keytype;
}

int DeviceGetKeypairAlgorithm(SPI_KEYPAIR_HANDLE hKeypair) {
    const call_stack_tracer tracer("DeviceGetKeypairAlgorithm");
    if (!hKeypair)
        return TEMBRA_BAD_ARGUMENT;
    TRACE_INFO("hKeypair->m_algo=%d", hKeypair->m_algo);
    return hKeypair->m_algo;
}

int DeviceGetKeypairBits(SPI_KEYPAIR_HANDLE hKeypair) {
    const call_stack_tracer tracer("DeviceGetKeypairBits");
    if (!hKeypair)
        return TEMBRA_BAD_ARGUMENT;
    TRACE_INFO("hKeypair->m_keybits=%d", hKeypair->m_keybits);
    return hKeypair->m_keybits;
}
