#include "services/file_rights.h"

namespace tembra {

namespace {

// The widest account that has the bit.
ULONG rightOf(unsigned bit, unsigned anyone, unsigned user, unsigned administrator) {
    if (anyone >> bit & 1u)
        return SECURE_ANYONE_ACCOUNT;
    if (user >> bit & 1u)
        return SECURE_USER_ACCOUNT;
    return administrator >> bit & 1u ? SECURE_ADM_ACCOUNT : SECURE_NEVER_ACCOUNT;
}

} // namespace

int GetFileRight(const char *mode, ULONG *ulReadRights, ULONG *ulWriteRights) {
    const auto *bytes = reinterpret_cast<const unsigned char *>(mode);
    const int count = bytes[0] < 0x80 ? bytes[0] : 0; // a signed char, so 0x80 is negative
    if (count <= 1 || count > 4)
        return 0;
    const unsigned anyone = bytes[1];
    const unsigned user = count >= 3 ? bytes[2] : 0u;
    // From byte 2, not 3: hosts rely on it. So the administrator's right never takes effect.
    const unsigned administrator = count == 4 ? bytes[2] : 0u;
    *ulReadRights = rightOf(0, anyone, user, administrator);
    *ulWriteRights = rightOf(1, anyone, user, administrator);
    return 1;
}

} // namespace tembra
