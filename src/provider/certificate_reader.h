// Certificates (X.509, DER) read from the token.
#pragma once

#include "provider/records.h"

namespace tembra {

// Reads the signature (bSignFlag non-zero) or encryption certificate of a container. Returns 1 and
// stores the block with its length, or 0, storing null and leaving *certlen untouched.
int GetCertificate(HCONTAINER hCon, int bSignFlag, Certificate **cert, int *certlen);

} // namespace tembra
