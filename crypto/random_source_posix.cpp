#include "random_source.h"

#include "gcrypt_handles.h"

namespace tembra::crypto {

// The kernel's generator needs no seeding in the process and keeps no pool that a fork copies.
void chooseRandomSource() {
    gcry_control(GCRYCTL_SET_PREFERRED_RNG_TYPE, GCRY_RNG_TYPE_SYSTEM);
}

} // namespace tembra::crypto
