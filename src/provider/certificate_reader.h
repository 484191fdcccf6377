// Certificates (X.509, DER) from the token.
#pragma once

#include "platform/skf.h"

namespace tembra {

// Reads the signature (bSignFlag non-zero) or encryption certificate of a container. 1 with the
// bytes, freed with std::free, and their number; 0 on failure, with *cert null and *certlen
// untouched.
int GetCertificate(HCONTAINER hCon, int bSignFlag, unsigned char **cert, int *certlen);

} // namespace tembra
