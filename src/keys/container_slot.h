// Containers for new keys: choosing a slot, making the container on the token.
#pragma once

#include "provider/records.h"

namespace tembra {

// Where a new key pair goes.
struct ContainerChoice {
    int result;            // 1; 0 no slot; -6 a container of this label exists
    int position;          // the slot
    Container *hContainer; // a keyless container to be used again, or null
};

// The first keyless container is taken whatever its label, and ends the search. Under g_lock.
ContainerChoice getEmptyContainerIndex(const Device *hDevice, const char *label);

// Makes a container on the token and its record. 1, 0, -8. Under g_lock.
int createContainer(Device *hDevice, const char *label, Container **out);

} // namespace tembra
