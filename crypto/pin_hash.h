// PINs at rest: a salted hash that is slow on purpose (PBKDF2 with HMAC-SHA-256).
#pragma once

#include "bytes.h"

namespace tembra::crypto {

constexpr unsigned PIN_HASH_DEFAULT_ITERATIONS = 60000;

// Everything needed to test a PIN later; store all three.
struct PinHash {
    unsigned iterations = 0;
    Bytes salt; // 16 random bytes
    Bytes hash; // 32 bytes
};

PinHash hashPin(ByteView pin, unsigned iterations = PIN_HASH_DEFAULT_ITERATIONS);

// False for a wrong PIN and for a hash that cannot have come from hashPin.
bool pinMatches(ByteView pin, const PinHash &stored);

} // namespace tembra::crypto
