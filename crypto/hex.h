// Bytes as hexadecimal text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "bytes.h"

namespace tembra::crypto {

std::string toHex(ByteView bytes); // lower case

// Either case, an even number of digits, nothing else; otherwise empty.
std::optional<Bytes> fromHex(std::string_view text);

} // namespace tembra::crypto
