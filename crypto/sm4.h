// The block cipher SM4 (GB/T 32907, also written SMS4) in ECB and CBC modes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "bytes.h"
#include "secret.h"

namespace tembra::crypto {

constexpr std::size_t SM4_BLOCK_SIZE = 16;
constexpr std::size_t SM4_KEY_SIZE = 16;
using Sm4Block = std::array<std::uint8_t, SM4_BLOCK_SIZE>;

enum class Sm4Mode { ecb, cbc };
enum class Sm4Padding { none = 0, pkcs7 = 1 }; // numbered as BLOCKCIPHERPARAM's PaddingType

// The key is 16 bytes; iv is 16 bytes for CBC and ignored for ECB. Without padding the data must be
// a multiple of 16 bytes; with PKCS #7 the ciphertext is 1 to 16 bytes longer than the plaintext.
// Empty if a length or, when decrypting, the padding is wrong.
std::optional<Bytes> sm4Encrypt(Sm4Mode mode, Sm4Padding padding, ByteView key, ByteView iv,
                                ByteView plain);
std::optional<SecretBytes> sm4Decrypt(Sm4Mode mode, Sm4Padding padding, ByteView key, ByteView iv,
                                      ByteView cipher);

// Encrypts a single block; empty if a length is wrong.
std::optional<Sm4Block> sm4EncryptBlock(ByteView key, ByteView block);

} // namespace tembra::crypto
