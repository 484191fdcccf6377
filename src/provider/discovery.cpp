#include "provider/discovery.h"

#include "log/trace.h"
#include "platform/memory.h"
#include "platform/skf_arguments.h"
#include "provider/lock.h"
#include "provider/name_list.h"

using namespace tembra;

namespace {

constexpr ULONG NO_TIMEOUT = 0xFFFFFFFF;
using TokenNames = NameList<1024>;

DeviceSet *createDeviceSet() {
    auto *hSet = allocateRecord<DeviceSet>();
    auto **handles = static_cast<Device **>(allocateZeroed(DEVICE_COUNT_MAX * sizeof(Device *)));
    if (!hSet || !handles) {
        std::free(hSet);
        std::free(handles);
        return nullptr;
    }
    hSet->m_allocCount = DEVICE_COUNT_MAX;
    hSet->m_handles = handles;
    return hSet;
}

// The texts of a DEVINFO need not end with a NUL.
int textLength(const char *text, std::size_t size) {
    const void *end = std::memchr(text, '\0', size);
    return static_cast<int>(end ? static_cast<const char *>(end) - text
                                : static_cast<std::ptrdiff_t>(size));
}

void traceInfo(const DEVINFO &info, const char *function) {
    const auto line = [function](const char *format, auto... values) {
        if (traceEnabled(TraceLevel::debug))
            writeLog(traceTag(TraceLevel::debug), function, format, values...);
    };
    line("device info issuer : %.*s", textLength(info.Issuer, sizeof(info.Issuer)), info.Issuer);
    line("device info label : %.*s", textLength(info.Label, sizeof(info.Label)), info.Label);
    line("device info serial number : %.*s",
         textLength(info.SerialNumber, sizeof(info.SerialNumber)), info.SerialNumber);
    line("device algo sym : 0x%08x", info.AlgSymCap);
    line("device algo asym : 0x%08x", info.AlgAsymCap);
    line("device algo hash : 0x%08x", info.AlgHashCap);
}

void store(DeviceSet *hSet, Device *hDevice, const char *function) {
    const int index = hSet->m_count++;
    hSet->m_handles[index] = hDevice;
    TEMBRA_TRACE(TraceLevel::debug, function, "hSet->m_handles[%d]=%p", index,
                 static_cast<void *>(hDevice));
}

bool isFull(const DeviceSet *hSet, const char *function) {
    if (hSet->m_count < hSet->m_allocCount)
        return false;
    TEMBRA_TRACE(TraceLevel::warning, function, "hSet->m_count >= hSet->m_allocCount");
    return true;
}

// False if the set is full before the last application.
bool addApplications(DeviceSet *hSet, DEVHANDLE hDev, const DEVINFO &info, TokenNames &names,
                     const char *function) {
    while (const char *name = names.next()) {
        if (isFull(hSet, function))
            return false;
        HAPPLICATION hApp = nullptr;
        if (SKF_OpenApplication(hDev, skfInput(name), &hApp) != SAR_OK)
            continue;
        SKF_ClearSecureState(hApp); // no earlier login survives
        if (Device *hDevice = createKeyHandle(hDev, hApp, name, &info))
            store(hSet, hDevice, function);
    }
    return true;
}

// Connects, locks and reads a token. The result decides: a handle of 0 is a handle.
bool connectToken(const char *name, DEVHANDLE &hDev, DEVINFO &info, const char *function) {
    const char *failed = "SKF_ConnectDev";
    ULONG rv = SKF_ConnectDev(skfInput(name), &hDev);
    if (rv == SAR_OK) {
        failed = "SKF_LockDev";
        rv = SKF_LockDev(hDev, NO_TIMEOUT);
        if (rv == SAR_OK) {
            failed = "SKF_GetDevInfo";
            rv = SKF_GetDevInfo(hDev, &info);
            if (rv == SAR_OK)
                return true;
            SKF_UnlockDev(hDev);
        }
        SKF_DisConnectDev(hDev);
    }
    TEMBRA_TRACE(TraceLevel::error, function, "%s fail, error = 0x%08X", failed, rv);
    return false;
}

} // namespace

namespace tembra {

bool addDevice(DeviceSet *hSet, const char *name) {
    if (name[0] == '\0')
        return true;
    if (isFull(hSet, __func__))
        return false;
    DEVINFO info = {};
    DEVHANDLE hDev = nullptr;
    if (!connectToken(name, hDev, info, __func__))
        return true;
    traceInfo(info, __func__);

    TokenNames names;
    const ULONG rv = SKF_EnumApplication(hDev, names.buffer(), names.length());
    if (rv == SAR_OK && !names.isEmpty()) {
        const bool room = addApplications(hSet, hDev, info, names, __func__);
        SKF_UnlockDev(hDev);
        return room;
    }
    if (Device *hDevice = createEmptyKeyHandle(hDev, &info))
        store(hSet, hDevice, __func__);
    SKF_UnlockDev(hDev);
    TRACE_ERROR("appNameLen == 0 || appNameList[0] == 0");
    return true;
}

} // namespace tembra

SPI_DEVICESET_HANDLE DeviceGetAllDevices(void) {
    const call_stack_tracer tracer("DeviceGetAllDevices");
    DeviceSet *hSet = createDeviceSet();
    if (!hSet) {
        TRACE_ERROR("alloc memory fail");
        return nullptr;
    }

    ProviderLock lock;
    TokenNames names;
    const ULONG rv = SKF_EnumDev(1, names.buffer(), names.length());
    if (rv != SAR_OK) {
        lock.leave();
        TRACE_ERROR("SKF_EnumDev fail, error : 0x%08X", rv);
        return hSet;
    }
    while (const char *name = names.next())
        if (!addDevice(hSet, name))
            break;
    return hSet;
}
