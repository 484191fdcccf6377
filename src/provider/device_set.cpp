// Device sets and devices: counting, look-up, attributes and release.
#include "log/trace.h"
#include "provider/buffer.h"
#include "provider/lock.h"
#include "provider/records.h"

#include <cstdlib>
#include <cstring>

using namespace tembra;

namespace {

// Handles are freed without g_lock, so these change under the RecordLock alone.
struct Counts {
    std::int32_t hashes;
    std::int32_t ciphers;
};

Counts countsOf(const Device *hDevice) {
    const RecordLock lock;
    return {hDevice->m_hashCount, hDevice->m_cipherCount};
}

} // namespace

int DeviceGetDeviceCount(SPI_DEVICESET_HANDLE hDeviceSet) {
    const call_stack_tracer tracer("DeviceGetDeviceCount");
    TRACE_INFO("hDeviceSet = %p", static_cast<void *>(hDeviceSet));
    return hDeviceSet ? hDeviceSet->m_count : TEMBRA_BAD_ARGUMENT;
}

SPI_DEVICE_HANDLE DeviceGetDevice(SPI_DEVICESET_HANDLE hDeviceSet, int index) {
    const call_stack_tracer tracer("DeviceGetDevice");
    TRACE_INFO("hDeviceSet = %p, index = %d", static_cast<void *>(hDeviceSet), index);
    if (!hDeviceSet || index < 0 || index >= hDeviceSet->m_count) {
        TRACE_ERROR("index < 0 || index >= hDeviceSet->m_count");
        return nullptr;
    }
    Device *hDevice = hDeviceSet->m_handles[index];
    const ProviderLock lock;
    ++hDevice->m_refCount;
    return hDevice;
}

int DeviceFreeDevices(SPI_DEVICESET_HANDLE hDeviceSet) {
    const call_stack_tracer tracer("DeviceFreeDevices");
    TRACE_DEBUG(" hDeviceSet = %p, hDeviceSet->m_allocCount=%d, hDeviceSet->m_count=%d, "
                "hDeviceSet->m_handles[0]=%p",
                static_cast<void *>(hDeviceSet), hDeviceSet ? hDeviceSet->m_allocCount : 0,
                hDeviceSet ? hDeviceSet->m_count : 0,
                static_cast<void *>(hDeviceSet ? hDeviceSet->m_handles[0] : nullptr));
    if (!hDeviceSet)
        return TEMBRA_SUCCESS;
    for (int i = 0; i < hDeviceSet->m_count; ++i) {
        TRACE_INFO("hDeviceSet->m_handles[%d]=%p", i,
                   static_cast<void *>(hDeviceSet->m_handles[i]));
        DeviceFreeDevice(hDeviceSet->m_handles[i]);
    }
    std::free(hDeviceSet->m_handles);
    std::free(hDeviceSet);
    return TEMBRA_SUCCESS;
}

int DeviceFreeDevice(SPI_DEVICE_HANDLE hDevice) {
    const call_stack_tracer tracer("DeviceFreeDevice");
    TRACE_INFO("hDevice = %p", static_cast<void *>(hDevice));
    if (!hDevice)
        return TEMBRA_SUCCESS;

    ProviderLock lock;
    --hDevice->m_refCount;
    const Counts counts = countsOf(hDevice);
    TRACE_INFO("hDevice->m_refCount=%d, hDevice->m_keypairCount=%d, hDevice->m_hashCount=%d, "
               "hDevice->m_cipherCount=%d",
               hDevice->m_refCount, hDevice->m_keypairCount, counts.hashes, counts.ciphers);
    const bool isLast =
        hDevice->m_refCount == counts.ciphers + counts.hashes + hDevice->m_keypairCount;
    lock.leave();
    if (isLast)
        freeDevice(hDevice);
    return TEMBRA_SUCCESS;
}

int DeviceGetSerialNumber(SPI_DEVICE_HANDLE hDevice, char *sn, int snlen, int *pretsnlen) {
    const call_stack_tracer tracer("DeviceGetSerialNumber");
    if (!hDevice) {
        TRACE_ERROR("rv = hDevice == 0");
        return TEMBRA_FAILURE;
    }
    if (!hDevice->m_serialNumber) {
        TRACE_ERROR("rv = hDevice->m_serialNumber == 0");
        return TEMBRA_FAILURE;
    }
    const int length = static_cast<int>(std::strlen(hDevice->m_serialNumber)) + 1;
    const int rv = copyOut(hDevice->m_serialNumber, length, sn, snlen, pretsnlen);
    if (rv == TEMBRA_SUCCESS && sn)
        TRACE_INFO("hDevice = %p, sn = %s, snlen = %d, pretsnlen = %d",
                   static_cast<void *>(hDevice), sn, snlen, shown(pretsnlen));
    return rv;
}

int DeviceGetLabel(SPI_DEVICE_HANDLE hDevice, char *label, int labellen, int *pretlabellen) {
    const call_stack_tracer tracer("DeviceGetLabel");
    if (!hDevice) {
        TRACE_ERROR("hDevice == 0");
        return TEMBRA_FAILURE;
    }
    char text[sizeof(hDevice->m_info.Label) + 1] = {}; // the field need not end with a NUL
    std::memcpy(text, hDevice->m_info.Label, sizeof(hDevice->m_info.Label));
    const int length = static_cast<int>(std::strlen(text)) + 1;
    const int rv = copyOut(text, length, label, labellen, pretlabellen);
    if (rv == TEMBRA_SUCCESS && label)
        TRACE_INFO("label : %s", label);
    return rv;
}

int DeviceLockDevice(SPI_DEVICE_HANDLE) {
    const call_stack_tracer tracer("DeviceLockDevice");
    TRACE_INFO("DeviceLockDevice success");
    return TEMBRA_SUCCESS;
}

int DeviceUnlockDevice(SPI_DEVICE_HANDLE) {
    const call_stack_tracer tracer("DeviceUnlockDevice");
    TRACE_INFO("DeviceUnlockDevice success");
    return TEMBRA_SUCCESS;
}
