// The protocol by which entry points return bytes and text.
#pragma once

#include "tembra_key_prov.h"

#include <cstring>

namespace tembra {

// Stores the needed length unless needed is null. Then copies, unless buffer is null (a length
// query) or too small, which is refused with the buffer untouched.
inline int copyOut(const void *source, int length, void *buffer, int capacity, int *needed) {
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
