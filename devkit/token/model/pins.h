// PINs: their rules, their tries and their locking.
#pragma once

#include "refused.h"
#include "token.h"

#include <string_view>

namespace tembra::token::model {

// Refused(SAR_PIN_LEN_RANGE) unless the PIN has 6 to 16 bytes.
void requirePinLength(std::string_view pin);

Pin makePin(std::string_view text, std::uint32_t maxTries, unsigned iterations);

// Whether a try is right. One that is wrong costs a try, and the last one locks the PIN. The try is
// paid for on the disk before it is looked at, so that killing the process wins no free tries.
//   Refused(SAR_PIN_INCORRECT), Refused(SAR_PIN_LOCKED), Refused(SAR_PIN_LEN_RANGE)
// triesLeft, unless null, is told the tries that are left. pin belongs to change's image.
void checkPin(Change &change, Pin &pin, std::string_view text, ULONG *triesLeft);

// Puts a new PIN in the old one's place, with all its tries.
void replacePin(Pin &pin, std::string_view text);

} // namespace tembra::token::model
