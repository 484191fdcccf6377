// Deletion of a container with its key pairs.
#include "log/trace.h"
#include "platform/skf_arguments.h"
#include "provider/keypair_table.h"
#include "provider/lock.h"

#include <cstring>

using namespace tembra;

namespace {

// Frees the container's slot. Only the slots below the count are searched; the record itself stays
// in memory, since readers without the lock may hold it.
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

ULONG deleteOnToken(const Device *hDevice, Container *hContainer, const char *label) {
    if (hContainer->m_hContainer)
        SKF_CloseContainer(hContainer->m_hContainer);
    hContainer->m_hContainer = nullptr;
    return SKF_DeleteContainer(hDevice->m_hApp, skfInput(label));
}

} // namespace

int DeviceDeleteKeypair(SPI_KEYPAIR_HANDLE hKeypair) {
    const call_stack_tracer tracer("DeviceDeleteKeypair");
    TRACE_INFO("SPI_KEYPAIR_HANDLE hKeypair = %p", static_cast<void *>(hKeypair));
    if (!hKeypair) {
        TRACE_ERROR("hKeypair == NULL");
        return ORVEL_PKI_NULLHANDLE;
    }

    ProviderLock lock;
    Device *hDevice = deviceOf(hKeypair);
    Container *hContainer = containerOf(hKeypair);
    if (!hContainer) {
        lock.leave();
        TRACE_ERROR("hKeypair->m_device == NULL");
        return ORVEL_PKI_NULLHANDLE;
    }
    const ULONG rv = deleteOnToken(hDevice, hContainer, hKeypair->m_label);
    if (rv != SAR_USER_NOT_LOGGED_IN) {
        // The caller's handle keeps its record, and with it the label, alive.
        dropContainer(hDevice, hContainer);
        removeKeypair(hDevice, hKeypair);
        dropOtherKeypair(hDevice, hKeypair->m_label);
    }
    lock.leave();
    if (rv != SAR_OK)
        TRACE_ERROR("SKF_DeleteContainer fail, error = 0x%08x", rv);
    return rv == SAR_USER_NOT_LOGGED_IN ? ORVEL_PKI_NOTLOGGEDIN : ORVEL_PKI_SUCCESS;
}
