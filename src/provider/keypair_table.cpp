#include "provider/keypair_table.h"

#include "provider/lock.h"

#include <algorithm>
#include <cstdlib>

namespace tembra {

bool isTableFull(const Device *hDevice) {
    return hDevice->m_keypairCount >= KEYPAIR_COUNT_MAX;
}

void registerKeypair(Device *hDevice, Keypair *hKeypair) {
    hKeypair->m_device = hDevice;
    hKeypair->m_container = hDevice->m_containers[hKeypair->m_index];
    hDevice->m_keypairs[hDevice->m_keypairCount] = hKeypair;
    storeCount(hDevice->m_keypairCount, hDevice->m_keypairCount + 1);
    ++hDevice->m_refCount;
}

void handOutKeypair(Device *hDevice, Keypair *hKeypair) {
    const RecordLock lock;
    ++hKeypair->m_handleCount;
    ++hDevice->m_refCount;
}

void removeKeypair(Device *hDevice, Keypair *hKeypair) {
    Keypair **end = hDevice->m_keypairs + hDevice->m_keypairCount;
    Keypair **found = std::find(hDevice->m_keypairs, end, hKeypair);
    if (found != end) {
        std::copy(found + 1, end, found);
        *(end - 1) = nullptr;
        storeCount(hDevice->m_keypairCount, hDevice->m_keypairCount - 1);
    }

    bool isOrphan = false;
    {
        const RecordLock lock;
        hKeypair->m_device = nullptr;
        isOrphan = hKeypair->m_handleCount == 0;
    }
    if (isOrphan)
        freeKeypair(hKeypair);
}

ReturnedHandle takeBackHandle(Keypair *hKeypair) {
    const RecordLock lock;
    --hKeypair->m_handleCount;
    Device *hDevice = hKeypair->m_device;
    return {hDevice, !hDevice && hKeypair->m_handleCount <= 0};
}

void freeKeypair(Keypair *hKeypair) {
    std::free(hKeypair->m_label);
    std::free(hKeypair);
}

Device *deviceOf(const Keypair *hKeypair) {
    const RecordLock lock;
    return hKeypair->m_device;
}

Container *containerOf(const Keypair *hKeypair) {
    const RecordLock lock;
    const Device *hDevice = hKeypair->m_device;
    if (!hDevice || hKeypair->m_index < 0 || hKeypair->m_index >= CONTAINER_COUNT_MAX)
        return nullptr;
    Container *hContainer = hDevice->m_containers[hKeypair->m_index];
    return hContainer == hKeypair->m_container ? hContainer : nullptr;
}

const char *missingContainer(const Keypair *hKeypair) {
    return deviceOf(hKeypair)
               ? "hKeypair->m_device->m_containers[hKeypair->m_index] != hKeypair->m_container"
               : "hKeypair->m_device == 0";
}

} // namespace tembra
