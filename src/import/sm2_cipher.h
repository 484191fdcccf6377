// SM2 ciphertext in the host's flat form: 0x04 || x || y || C2 || C3 (the order C1, C2, C3).
#pragma once

#include "platform/skf.h"

#include <cstddef>

namespace tembra {

inline constexpr int SM2_COORDINATE_LEN = 32;
inline constexpr int SM2_POINT_LEN = 1 + 2 * SM2_COORDINATE_LEN;
inline constexpr int SM3_LEN = 32;
inline constexpr int SM2_CIPHER_OVERHEAD = SM2_POINT_LEN + SM3_LEN; // 97
inline constexpr unsigned char POINT_UNCOMPRESSED = 0x04;

// Copies a 32-byte coordinate right-aligned into its field, whose other bytes are zero.
void putCoordinate(BYTE (&field)[ECC_MAX_COORDINATE_LEN], const unsigned char *coordinate);

// Fills a zeroed record that has room for cipherLen - 97 bytes of Cipher. cipher holds cipherLen
// bytes, at least 97.
void fillCipherBlob(ECCCIPHERBLOB *blob, const unsigned char *cipher, std::size_t cipherLen);

} // namespace tembra
