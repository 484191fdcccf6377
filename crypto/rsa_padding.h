// The padding of PKCS #1 v1.5: 00 || type || padding || 00 || data, as long as the modulus.
#pragma once

#include <cstddef>
#include <optional>

#include "bytes.h"
#include "secret.h"

namespace tembra::crypto {

// Block type 1 (padding FF) and 2 (random non-zero padding); empty when data leaves no room for the
// 8 bytes of padding at least.
std::optional<SecretBytes> padForSignature(ByteView data, std::size_t blockSize);
std::optional<SecretBytes> padForEncryption(ByteView data, std::size_t blockSize);

// The data of a block of type 2; empty when the block is not one.
std::optional<SecretBytes> unpadEncryption(ByteView block);

} // namespace tembra::crypto
