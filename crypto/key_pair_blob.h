// The plain key pair blob, "_KEYPAIR", from which the host has a key pair imported that is not in
// an envelope. It contains the private key in clear.
// docs/development-kit.md describes the layout.
#pragma once

#include <optional>
#include <variant>

#include "crypto/private_key.h"

namespace tembra::crypto {

// Empty if an RSA modulus has another length than 1024 or 2048 bits.
SecretBytes encodeKeyPairBlob(const PrivateKey &key);

// Empty if the blob is malformed or private and public key do not match.
std::optional<PrivateKey> decodeKeyPairBlob(ByteView blob);

} // namespace tembra::crypto
