// Deletion of a key pair's container, and with it of its key pairs.
#include "log/trace.h"
#include "platform/skf_arguments.h"
#include "provider/keypair_table.h"
#include "provider/lock.h"
#include "provider/outcome.h"

#include <cstring>

using namespace tembra;

namespace {

constexpr Outcome DELETED_BEFORE = {TEMBRA_NULL_HANDLE, "hKeypair->m_device == NULL"};

// Whether a container in the table has this name. A left-over pair must not delete that one.
bool hasContainer(const Device *hDevice, const char *label) {
    for (const Container *hContainer : hDevice->m_containers)
        if (hContainer && std::strcmp(hContainer->m_label, label) == 0)
            return true;
    return false;
}

// Clears the container's slot. Only the slots below the count are searched. The record stays in
// memory because readers without the lock may hold it.
void dropContainer(Device *hDevice, const Container *hContainer) {
    const int count = hDevice->m_containerCount;
    for (int i = 0; i < count; ++i) {
        if (hDevice->m_containers[i] != hContainer)
            continue;
        setContainerAt(hDevice, i, nullptr);
        storeCount(hDevice->m_containerCount, count - 1);
        return;
    }
}

// The container's other key pair, found by its label.
void dropOtherKeypair(Device *hDevice, const char *label) {
    for (int i = 0; i < hDevice->m_keypairCount; ++i) {
        Keypair *other = hDevice->m_keypairs[i];
        if (std::strcmp(other->m_label, label) != 0)
            continue;
        removeKeypair(hDevice, other);
        return;
    }
}

// Closes the container once, also if the deletion is repeated.
void closeContainer(Container *hContainer) {
    if (!hContainer->m_isClosed)
        SKF_CloseContainer(hContainer->m_hContainer);
    hContainer->m_isClosed = true;
    hContainer->m_hContainer = nullptr;
}

// Deletes the pair with its container and returns the token's result. A pair left over from a
// container that is gone deletes by name, or goes alone if the name is in use again. The caller's
// handle keeps the record, and with it the label, alive.
ULONG deletePair(Device *hDevice, Keypair *hKeypair) {
    Container *hContainer = containerOf(hKeypair);
    const char *label = hKeypair->m_label;
    if (!hContainer && hasContainer(hDevice, label)) {
        removeKeypair(hDevice, hKeypair);
        return SAR_OK;
    }
    if (hContainer)
        closeContainer(hContainer);
    const ULONG rv = SKF_DeleteContainer(hDevice->m_hApp, skfInput(label));
    if (rv == SAR_USER_NOT_LOGGED_IN)
        return rv;
    if (hContainer)
        dropContainer(hDevice, hContainer);
    removeKeypair(hDevice, hKeypair);
    dropOtherKeypair(hDevice, label);
    return rv;
}

} // namespace

int DeviceDeleteKeypair(SPI_KEYPAIR_HANDLE hKeypair) {
    const call_stack_tracer tracer("DeviceDeleteKeypair");
    TRACE_INFO("SPI_KEYPAIR_HANDLE hKeypair = %p", static_cast<void *>(hKeypair));
    if (!hKeypair)
        return finish({TEMBRA_NULL_HANDLE, "hKeypair == NULL"}, __func__);
    if (!deviceOf(hKeypair)) // must not wait for the lock
        return finish(DELETED_BEFORE, __func__);

    ProviderLock lock;
    Device *hDevice = deviceOf(hKeypair);
    if (!hDevice) {
        lock.leave();
        return finish(DELETED_BEFORE, __func__);
    }
    const ULONG rv = deletePair(hDevice, hKeypair);
    lock.leave();
    if (rv != SAR_OK)
        TRACE_ERROR("SKF_DeleteContainer fail, error = 0x%08x", rv);
    return rv == SAR_USER_NOT_LOGGED_IN ? TEMBRA_NOT_LOGGED_IN : TEMBRA_SUCCESS;
}
