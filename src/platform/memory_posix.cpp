#include "platform/memory.h"

#include <strings.h>

namespace tembra::platform {

void wipe(void *memory, std::size_t size) {
    if (memory && size)
        explicit_bzero(memory, size);
}

} // namespace tembra::platform
