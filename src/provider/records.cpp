#include "provider/records.h"

#include "platform/orvel_crypto.h"
#include "provider/certificate_cache.h"
#include "provider/handle_list.h"
#include "provider/lock.h"

#include <atomic>
#include <cstdlib>

namespace tembra {

std::int32_t loadCount(const std::int32_t &count) {
    return std::atomic_ref<std::int32_t>(const_cast<std::int32_t &>(count))
        .load(std::memory_order_relaxed);
}

void storeCount(std::int32_t &count, std::int32_t value) {
    std::atomic_ref<std::int32_t>(count).store(value, std::memory_order_relaxed);
}

Container *containerAt(const Device *hDevice, int index) {
    if (index < 0 || index >= CONTAINER_COUNT_MAX)
        return nullptr;
    const RecordLock lock;
    return hDevice->m_containers[index];
}

void setContainerAt(Device *hDevice, int index, Container *hContainer) {
    const RecordLock lock;
    hDevice->m_containers[index] = hContainer;
}

void freeContainer(Container *hContainer) {
    if (!hContainer)
        return;
    if (hContainer->m_hContainer)
        SKF_CloseContainer(hContainer->m_hContainer);
    hContainer->m_hContainer = nullptr;
    std::free(hContainer->m_label);
    if (hContainer->m_encPubKey)
        OrvelPKICryptoFreeMemory(hContainer->m_encPubKey);
    releaseCertificate(hContainer->m_encCert);
    if (hContainer->m_signPubKey)
        OrvelPKICryptoFreeMemory(hContainer->m_signPubKey);
    releaseCertificate(hContainer->m_signCert);
    std::free(hContainer);
}

void freeDevice(Device *hDevice) {
    if (!hDevice)
        return;
    std::free(hDevice->m_serialNumber);
    hDevice->m_serialNumber = nullptr;
    for (int i = 0; i < hDevice->m_keypairCount; ++i) {
        std::free(hDevice->m_keypairs[i]->m_label);
        std::free(hDevice->m_keypairs[i]);
    }
    for (int i = 0; i < hDevice->m_containerCount; ++i)
        freeContainer(hDevice->m_containers[i]);
    freeHandleList(hDevice->m_hashes, hDevice->m_hashCount);
    freeHandleList(hDevice->m_ciphers, hDevice->m_cipherCount);
    SKF_CloseApplication(hDevice->m_hApp);
    SKF_DisConnectDev(hDevice->m_hDev);
    std::free(hDevice);
}

} // namespace tembra
