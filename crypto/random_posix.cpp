#include "gcrypt_handles.h"
#include "random.h"

namespace tembra::crypto {

// The kernel's generator needs no seeding and keeps no pool that a forked process would share.
void chooseRandomSource() {
    gcry_control(GCRYCTL_SET_PREFERRED_RNG_TYPE, GCRY_RNG_TYPE_SYSTEM);
}

} // namespace tembra::crypto
