#include "sm2_point.h"

#include <algorithm>

namespace tembra::crypto {

Sm2EncodedPoint encodeSm2Point(const Sm2PublicKey &key) {
    Sm2EncodedPoint out{};
    out[0] = UNCOMPRESSED_POINT;
    std::ranges::copy(key.y, std::ranges::copy(key.x, out.begin() + 1).out);
    return out;
}

std::optional<Sm2PublicKey> decodeSm2Point(ByteView encoded) {
    if (encoded.size() != SM2_POINT_SIZE || encoded[0] != UNCOMPRESSED_POINT)
        return std::nullopt;
    Sm2PublicKey key;
    std::ranges::copy(encoded.subspan(1, SM2_SIZE), key.x.begin());
    std::ranges::copy(encoded.subspan(1 + SM2_SIZE), key.y.begin());
    return key;
}

} // namespace tembra::crypto
