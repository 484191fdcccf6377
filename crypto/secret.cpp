#include "secret.h"

namespace tembra::crypto {

void wipe(void *memory, std::size_t length) noexcept {
    // The optimiser must keep writes through a volatile pointer.
    auto *byte = static_cast<volatile std::uint8_t *>(memory);
    while (length-- != 0)
        *byte++ = 0;
}

bool equalConstantTime(ByteView a, ByteView b) noexcept {
    if (a.size() != b.size())
        return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        difference |= static_cast<unsigned>(a[i] ^ b[i]);
    return difference == 0;
}

} // namespace tembra::crypto
