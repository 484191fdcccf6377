// Numbered data objects: files in the token's application, named by their decimal number.
#include "log/trace.h"
#include "platform/skf_arguments.h"
#include "provider/lock.h"
#include "provider/outcome.h"
#include "provider/records.h"
#include "services/file_rights.h"

#include <cstdio>
#include <cstring>

using namespace tembra;

namespace {

constexpr ULONG FILE_LIST_LEN = 8192;

struct FileName {
    char text[32];
    explicit FileName(int dataId) { std::snprintf(text, sizeof(text), "%d", dataId); }
};

// Whether the application has a file of exactly this name. Not cached: the token is always asked.
bool fileExists(const Device *hDevice, const char *name) {
    char list[FILE_LIST_LEN] = {};
    ULONG size = sizeof(list);
    if (SKF_EnumFiles(hDevice->m_hApp, list, &size) != SAR_OK)
        return false;
    if (size > sizeof(list))
        size = sizeof(list);
    for (ULONG at = 0; at < size;) {
        const void *end = std::memchr(list + at, '\0', size - at);
        if (!end) // an incomplete name
            return false;
        if (std::strcmp(list + at, name) == 0)
            return true;
        at = static_cast<ULONG>(static_cast<const char *>(end) - list) + 1;
    }
    return false;
}

// The result of an entry point whose last token call returned rv.
int resultOf(ULONG rv, const char *call, const char *function) {
    if (rv == SAR_OK)
        return TEMBRA_SUCCESS;
    if (rv == SAR_USER_NOT_LOGGED_IN)
        return TEMBRA_NOT_LOGGED_IN;
    TEMBRA_TRACE(TraceLevel::error, function, "%s fail, error = 0x%08x", call, rv);
    return TEMBRA_FAILURE;
}

// Finds the object and its size. Requires the lock.
struct Lookup {
    bool exists = false;
    ULONG rv = SAR_OK; // of SKF_GetFileInfo
    int fileSize = 0;

    Lookup(const Device *hDevice, const char *name) : exists(fileExists(hDevice, name)) {
        FILEATTRIBUTE attr = {};
        if (exists)
            rv = SKF_GetFileInfo(hDevice->m_hApp, skfInput(name), &attr);
        fileSize = static_cast<int>(attr.FileSize);
    }
};

int failedLookup(const Lookup &lookup, const char *function) {
    if (!lookup.exists)
        return TEMBRA_NOT_FOUND;
    TEMBRA_TRACE(TraceLevel::error, function, "SKF_GetFileInfo fail, error = 0x%08x", lookup.rv);
    return TEMBRA_FAILURE;
}

} // namespace

int DeviceCreateData(SPI_DEVICE_HANDLE hDevice, int dataId, const char *mode, int length) {
    const call_stack_tracer tracer("DeviceCreateData");
    TRACE_INFO("hDevice = %p, int dataId = %d, const char * mode = %p, int length = %d",
               static_cast<void *>(hDevice), dataId, static_cast<const void *>(mode), length);
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (dataId < 0 || !mode || length < 0)
        return TEMBRA_BAD_ARGUMENT;
    if (hDevice->m_isformat == 0)
        return fail("hDevice->m_isformat == 0", __func__);
    const FileName name(dataId);

    ProviderLock lock;
    if (fileExists(hDevice, name.text))
        return TEMBRA_ALREADY_EXISTS;
    ULONG ulReadRights = 0;
    ULONG ulWriteRights = 0;
    if (!GetFileRight(mode, &ulReadRights, &ulWriteRights)) {
        lock.leave();
        TRACE_ERROR("GetFileRight(mode, &ulReadRights, &ulWriteRights) == 0");
        return TEMBRA_FAILURE;
    }
    const ULONG rv = SKF_CreateFile(hDevice->m_hApp, skfInput(name.text),
                                    static_cast<ULONG>(length), ulReadRights, ulWriteRights);
    lock.leave();
    return resultOf(rv, "SKF_CreateFile", __func__);
}

int DeviceReadDataEx(SPI_DEVICE_HANDLE hDevice, int dataId, int offset, unsigned char *data,
                     int datalen, int *pretdatalen) {
    const call_stack_tracer tracer("DeviceReadDataEx");
    TRACE_INFO("hDevice = %p, int dataId = %d, int offset = %d, unsigned char *data = %p, "
               "int datalen = %d, int*  pretdatalen = %d",
               static_cast<void *>(hDevice), dataId, offset, static_cast<void *>(data), datalen,
               shown(pretdatalen));
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (dataId < 0 || offset < 0 || !pretdatalen)
        return TEMBRA_BAD_ARGUMENT;
    if (hDevice->m_isformat == 0)
        return fail("hDevice->m_isformat == 0", __func__);
    const FileName name(dataId);

    ProviderLock lock;
    const Lookup lookup(hDevice, name.text);
    if (!lookup.exists || lookup.rv != SAR_OK) {
        lock.leave();
        return failedLookup(lookup, __func__);
    }
    if (offset > lookup.fileSize) {
        lock.leave();
        TRACE_ERROR("offset > (int)attr.FileSize");
        return TEMBRA_BAD_ARGUMENT;
    }
    const int left = lookup.fileSize - offset;
    if (!data) {
        *pretdatalen = left;
        return TEMBRA_SUCCESS;
    }
    if (datalen < 0) {
        lock.leave();
        TRACE_ERROR("datalen < 0");
        return TEMBRA_BAD_ARGUMENT;
    }
    if (datalen == 0) {
        *pretdatalen = 0;
        return TEMBRA_SUCCESS;
    }
    const ULONG length = static_cast<ULONG>(datalen < left ? datalen : left);
    ULONG read = length;
    const ULONG rv = SKF_ReadFile(hDevice->m_hApp, skfInput(name.text), static_cast<ULONG>(offset),
                                  length, data, &read);
    lock.leave();
    if (rv == SAR_OK && read > length)
        return failOverlong("SKF_ReadFile", read, length, __func__);
    if (rv == SAR_OK)
        *pretdatalen = static_cast<int>(read);
    return resultOf(rv, "SKF_ReadFile", __func__);
}

int DeviceWriteDataEx(SPI_DEVICE_HANDLE hDevice, int dataId, int offset, const unsigned char *data,
                      int datalen) {
    const call_stack_tracer tracer("DeviceWriteDataEx");
    TRACE_INFO("hDevice = %p, int dataId = %d, int offset = %d, const unsigned char *data = %p, "
               "int datalen = %d",
               static_cast<void *>(hDevice), dataId, offset, static_cast<const void *>(data),
               datalen);
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (dataId < 0 || offset < 0 || datalen <= 0 || !data)
        return TEMBRA_BAD_ARGUMENT;
    if (hDevice->m_isformat == 0)
        return fail("hDevice->m_isformat == 0", __func__);
    const FileName name(dataId);

    ProviderLock lock;
    const Lookup lookup(hDevice, name.text);
    if (!lookup.exists || lookup.rv != SAR_OK) {
        lock.leave();
        return failedLookup(lookup, __func__);
    }
    if (std::int64_t{offset} + datalen > lookup.fileSize) {
        lock.leave();
        TRACE_ERROR("offset + datalen > (int)attr.FileSize");
        return TEMBRA_BAD_ARGUMENT;
    }
    const ULONG rv = SKF_WriteFile(hDevice->m_hApp, skfInput(name.text), static_cast<ULONG>(offset),
                                   skfInput(data), static_cast<ULONG>(datalen));
    lock.leave();
    return resultOf(rv, "SKF_WriteFile", __func__);
}

int DeviceDeleteData(SPI_DEVICE_HANDLE hDevice, int dataId) {
    const call_stack_tracer tracer("DeviceDeleteData");
    TRACE_INFO("hDevice = %p, int dataId = %d", static_cast<void *>(hDevice), dataId);
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (dataId < 0)
        return TEMBRA_BAD_ARGUMENT;
    if (hDevice->m_isformat == 0)
        return fail("hDevice->m_isformat == 0", __func__);
    const FileName name(dataId);

    ProviderLock lock;
    if (!fileExists(hDevice, name.text))
        return TEMBRA_NOT_FOUND;
    const ULONG rv = SKF_DeleteFile(hDevice->m_hApp, skfInput(name.text));
    lock.leave();
    return resultOf(rv, "SKF_DeleteFile", __func__);
}
