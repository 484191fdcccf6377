// Bytes as hexadecimal text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "bytes.h"

namespace tembra::crypto {

std::string toHex(ByteView bytes); // lower case

// An even number of digits in either case; empty for any other text.
std::optional<Bytes> fromHex(std::string_view text);

} // namespace tembra::crypto
