// The protocol in which entry points hand out bytes and text.
#pragma once

#include "tembra_key_prov.h"

#include <cstring>

namespace tembra {

// Stores the needed length where that pointer is not null, answers a length query (null buffer),
// refuses a buffer that is too short and leaves it untouched, or copies.
inline int handOut(const void *source, int length, void *buffer, int capacity, int *needed) {
    if (needed)
        *needed = length;
    if (!buffer)
        return TEMBRA_SUCCESS;
    if (capacity < length)
        return ORVEL_PKI_MOREDATA;
    if (length > 0)
        std::memcpy(buffer, source, static_cast<std::size_t>(length));
    return TEMBRA_SUCCESS;
}

} // namespace tembra
