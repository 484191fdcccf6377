// SM3 digests (GB/T 32905) on the token.
#include "log/trace.h"
#include "platform/memory.h"
#include "platform/skf_arguments.h"
#include "provider/handle_list.h"
#include "provider/lock.h"
#include "provider/outcome.h"
#include "provider/records.h"
#include "provider/settings.h"

using namespace tembra;

namespace {

constexpr int SM3_LEN = 32;
constexpr int PIECE_LEN_DEFAULT = 1024;

// A record with its digest started on the token, counted in the device's list, or null.
HashContext *createHash(Device *hDevice, int algo) {
    auto *hHash = allocateRecord<HashContext>();
    if (!hHash)
        return nullptr;
    hHash->m_device = hDevice;
    hHash->m_algo = algo;
    if (SKF_DigestInit(hDevice->m_hDev, SGD_SM3, nullptr, nullptr, 0, &hHash->m_handle) != SAR_OK) {
        std::free(hHash);
        return nullptr;
    }
    if (!appendHandle(hDevice->m_hashes, hDevice->m_hashAllocCount, hDevice->m_hashCount, hHash)) {
        SKF_CloseHandle(hHash->m_handle); // also a handle of 0
        std::free(hHash);
        return nullptr;
    }
    ++hDevice->m_refCount;
    return hHash;
}

} // namespace

SPI_HASH_HANDLE DeviceNewHash(SPI_DEVICE_HANDLE hDevice, int algo) {
    const call_stack_tracer tracer("DeviceNewHash");
    TRACE_INFO("hDevice = %p, int algo = %d", static_cast<void *>(hDevice), algo);
    if (!hDevice)
        return nullptr;
    if (algo != ORVEL_PKI_ALGORITHM_SM3) {
        TRACE_ERROR("only support sm3");
        return nullptr;
    }
    const ProviderLock lock;
    return createHash(hDevice, algo);
}

int DeviceHashUpdate(SPI_HASH_HANDLE hHash, const unsigned char *data, int datalen) {
    const call_stack_tracer tracer("DeviceHashUpdate");
    TRACE_INFO("SPI_HASH_HANDLE hHash = %p, const unsigned char *data = %p, int datalen = %d",
               static_cast<void *>(hHash), static_cast<const void *>(data), datalen);
    if (!hHash)
        return TEMBRA_NULL_HANDLE;
    if (datalen < 0 || (datalen > 0 && !data))
        return TEMBRA_BAD_ARGUMENT;

    const int limit = g_maxOperationLen > 0 ? g_maxOperationLen : PIECE_LEN_DEFAULT;
    for (int done = 0; done < datalen;) {
        const int piece = datalen - done < limit ? datalen - done : limit;
        const ULONG rv =
            SKF_DigestUpdate(hHash->m_handle, skfInput(data + done), static_cast<ULONG>(piece));
        if (rv != SAR_OK) {
            TRACE_ERROR("SKF_DigestUpdate fail, error = 0x%08X", rv);
            return TEMBRA_FAILURE;
        }
        done += piece;
    }
    return TEMBRA_SUCCESS;
}

int DeviceHashFinal(SPI_HASH_HANDLE hHash, unsigned char *hashvalue, int hashvaluelen,
                    int *prethashvaluelen) {
    const call_stack_tracer tracer("DeviceHashFinal");
    TRACE_INFO("SPI_HASH_HANDLE hHash = %p, unsigned char *hashvalue = %p, int hashvaluelen = %d, "
               "int *prethashvaluelen = %d",
               static_cast<void *>(hHash), static_cast<void *>(hashvalue), hashvaluelen,
               shown(prethashvaluelen));
    if (!hHash)
        return TEMBRA_NULL_HANDLE;
    if (!prethashvaluelen)
        return TEMBRA_BAD_ARGUMENT;
    *prethashvaluelen = SM3_LEN;
    if (!hashvalue)
        return TEMBRA_SUCCESS;
    if (hashvaluelen < SM3_LEN)
        return ORVEL_PKI_MOREDATA;
    ULONG length = static_cast<ULONG>(hashvaluelen);
    const ULONG rv = SKF_DigestFinal(hHash->m_handle, hashvalue, &length);
    if (rv != SAR_OK) {
        TRACE_ERROR("SKF_DigestFinal fail, error = 0x%08X", rv);
        return TEMBRA_FAILURE;
    }
    return TEMBRA_SUCCESS;
}

int DeviceFreeHash(SPI_HASH_HANDLE hHash) {
    const call_stack_tracer tracer("DeviceFreeHash");
    TRACE_INFO("SPI_HASH_HANDLE hHash = %p", static_cast<void *>(hHash));
    if (!hHash)
        return TEMBRA_SUCCESS;
    Device *hDevice = hHash->m_device;
    removeHandle(hDevice->m_hashes, hDevice->m_hashCount, hHash);
    closeAndFree(hHash);
    DeviceFreeDevice(hDevice);
    return TEMBRA_SUCCESS;
}
