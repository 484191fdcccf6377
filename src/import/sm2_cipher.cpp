#include "import/sm2_cipher.h"

#include <cstring>

namespace tembra {

void putCoordinate(BYTE (&field)[ECC_MAX_COORDINATE_LEN], const unsigned char *coordinate) {
    std::memcpy(&field[ECC_MAX_COORDINATE_LEN - SM2_COORDINATE_LEN], coordinate,
                SM2_COORDINATE_LEN);
}

void fillCipherBlob(ECCCIPHERBLOB *blob, const unsigned char *cipher, std::size_t cipherLen) {
    const std::size_t messageLen = cipherLen - SM2_CIPHER_OVERHEAD;
    const unsigned char *c2 = cipher + SM2_POINT_LEN;
    putCoordinate(blob->XCoordinate, cipher + 1);
    putCoordinate(blob->YCoordinate, cipher + 1 + SM2_COORDINATE_LEN);
    std::memcpy(blob->HASH, c2 + messageLen, SM3_LEN);
    blob->CipherLen = static_cast<ULONG>(messageLen);
    std::memcpy(reinterpret_cast<BYTE *>(blob) + offsetof(ECCCIPHERBLOB, Cipher), c2, messageLen);
}

} // namespace tembra
