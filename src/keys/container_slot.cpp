#include "keys/container_slot.h"

#include "log/trace.h"
#include "platform/memory.h"
#include "platform/skf_arguments.h"

#include <cstdlib>
#include <cstring>

namespace tembra {

namespace {
constexpr ULONG VENDOR_NOT_LOGGED_IN = 0x000000B3;
}

ContainerChoice getEmptyContainerIndex(const Device *hDevice, const char *label) {
    int position = CONTAINER_COUNT_MAX;
    for (int i = 0; i < CONTAINER_COUNT_MAX; ++i) {
        Container *hContainer = hDevice->m_containers[i];
        if (!hContainer) {
            if (position == CONTAINER_COUNT_MAX)
                position = i;
        } else if (hContainer->m_type == CONTAINER_TYPE_EMPTY) {
            return {TEMBRA_SUCCESS, i, hContainer};
        } else if (std::strcmp(hContainer->m_label, label) == 0) {
            return {TEMBRA_ALREADY_EXISTS, i, nullptr};
        }
    }
    if (position >= CONTAINER_COUNT_MAX) {
        TRACE_ERROR("pos >= CONTAINER_COUNT_MAX");
        return {TEMBRA_FAILURE, position, nullptr};
    }
    return {TEMBRA_SUCCESS, position, nullptr};
}

int createContainer(Device *hDevice, const char *label, Container **out) {
    HCONTAINER hCon = nullptr;
    const ULONG rv = SKF_CreateContainer(hDevice->m_hApp, skfInput(label), &hCon);
    TRACE_DEBUG("SKF_CreateContainer hDevice->m_hApp=%p, label=%s, hCon=%p", hDevice->m_hApp, label,
                hCon);
    if (rv == SAR_USER_NOT_LOGGED_IN || rv == VENDOR_NOT_LOGGED_IN) {
        TRACE_WARN("rv == SAR_USER_NOT_LOGGED_IN || rv == 0x000000b3");
        return TEMBRA_NOT_LOGGED_IN;
    }
    if (rv != SAR_OK) {
        TRACE_ERROR("SKF_CreateContainer fail, error = 0x%08X", rv);
        return TEMBRA_FAILURE;
    }
    auto *hContainer = allocateRecord<Container>();
    if (!hContainer) {
        SKF_DeleteContainer(hDevice->m_hApp, skfInput(label));
        TRACE_ERROR("hContainer == 0");
        return TEMBRA_FAILURE;
    }
    hContainer->m_label = copyText(label);
    if (!hContainer->m_label) {
        SKF_DeleteContainer(hDevice->m_hApp, skfInput(label));
        std::free(hContainer);
        TRACE_ERROR("hContainer->m_label == 0");
        return TEMBRA_FAILURE;
    }
    hContainer->m_hContainer = hCon;
    *out = hContainer;
    return TEMBRA_SUCCESS;
}

} // namespace tembra
