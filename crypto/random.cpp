#include "random.h"

#include "gcrypt_handles.h"

namespace tembra::crypto {

void fillRandom(std::span<std::uint8_t> out) {
    initialiseGcrypt();
    gcry_randomize(out.data(), out.size(), GCRY_STRONG_RANDOM);
}

} // namespace tembra::crypto
