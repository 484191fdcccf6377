// The bytes that a signature of a file signs.
#pragma once

#include <string>

#include "crypto/sm2_sign.h"

namespace tembra::tool {

// Both read the file ("-" is standard input) piece by piece and throw Failure.

// RSA with PKCS #1 v1.5: the DigestInfo of the file's SHA-256.
crypto::Bytes rsaToBeSigned(const std::string &file);

// SM2: the SM3 of Z and the file (GB/T 32918.2).
crypto::Bytes sm2ToBeSigned(const std::string &file, const crypto::Sm2PublicKey &key,
                            const std::string &signerId);

} // namespace tembra::tool
