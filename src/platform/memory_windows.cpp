#include "platform/memory.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace tembra::platform {

void wipe(void *memory, std::size_t size) {
    if (memory && size)
        SecureZeroMemory(memory, size);
}

} // namespace tembra::platform
