// What a signature of a file signs: the same when it is made and when it is checked.
#pragma once

#include <string>

#include "crypto/sm2_sign.h"
#include "tembrakey/cli/arguments.h"

namespace tembra::tool {

// The signer's identity in SM2 signatures, as the command line gives it.
struct SignerId {
    std::string value{crypto::SM2_DEFAULT_SIGNER_ID};

    void describe(Arguments &arguments);
};

// Both read the file ("-" is standard input) piece by piece and throw Failure.

// RSA with PKCS #1 v1.5: the DigestInfo of the file's SHA-256.
crypto::Bytes rsaToBeSigned(const std::string &file);

// SM2: the SM3 of Z and the file (GB/T 32918.2).
crypto::Bytes sm2ToBeSigned(const std::string &file, const crypto::Sm2PublicKey &key,
                            const SignerId &signer);

} // namespace tembra::tool
