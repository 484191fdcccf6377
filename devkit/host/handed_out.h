// What the host library hands out and takes back: buffers, public keys and devices, all of them
// blocks that know their length and kind.
#pragma once

#include "crypto/bytes.h"

namespace tembra::host {

enum class Kind : unsigned { buffer = 0x42554646, publicKey = 0x4B455942, device = 0x44455643 };

// A new block with these bytes; never null, throws std::bad_alloc.
unsigned char *handOut(Kind kind, crypto::ByteView content);

// The bytes of a block.
crypto::ByteView contentOf(const void *block);

// Whether this is a block of that kind; false for null.
bool isA(Kind kind, const void *block);

// Wipes and frees a block. False, and nothing happens, for null and for another kind.
bool takeBack(Kind kind, void *block);

// The blocks that have not come back yet.
unsigned long long liveBlocks();

} // namespace tembra::host
