// Containers for new keys: choosing a slot, creating the container on the token.
#pragma once

#include "provider/records.h"

namespace tembra {

// The place for a new key pair.
struct ContainerChoice {
    int result;            // 1; 0: no slot; -6: a container with this label exists
    int position;          // the slot
    Container *hContainer; // a keyless container to reuse, or null
};

// Takes the first keyless container, whatever its label, without looking further. Requires g_lock.
ContainerChoice getEmptyContainerIndex(const Device *hDevice, const char *label);

// Creates a container on the token and its record. Returns 1, 0 or -8. Requires g_lock.
int createContainer(Device *hDevice, const char *label, Container **out);

} // namespace tembra
