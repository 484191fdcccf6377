// Texts as bytes and back, for the tests of the kit's cryptography.
#pragma once

#include <string>
#include <string_view>

#include "crypto/bytes.h"

namespace tembra::crypto {

inline Bytes bytesOfText(std::string_view text) {
    return {text.begin(), text.end()};
}

inline std::string textOf(ByteView bytes) {
    return {bytes.begin(), bytes.end()};
}

} // namespace tembra::crypto
