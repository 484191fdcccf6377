// PINs: length, tries, locking.
#pragma once

#include <string_view>

#include "error.h"
#include "token.h"

namespace tembra::token::model {

// Error(SAR_PIN_LEN_RANGE) unless the PIN has 6 to 16 bytes.
void requirePinLength(std::string_view pin);

Pin makePin(std::string_view text, std::uint32_t maxTries);

// Checks a PIN; the last wrong try locks it. The try is deducted on disk before the comparison, so
// killing the process gains no free tries. triesLeft, unless null, receives the tries left; pin
// belongs to the change's image.
//   Error(SAR_PIN_INCORRECT), Error(SAR_PIN_LOCKED), Error(SAR_PIN_LEN_RANGE)
void checkPin(Change &change, Pin &pin, std::string_view text, ULONG *triesLeft);

// Sets a new PIN and restores all tries.
void replacePin(Pin &pin, std::string_view text);

} // namespace tembra::token::model
