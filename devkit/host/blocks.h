// The memory blocks that the host library returns and gets back: buffers, public keys, devices. A
// block knows its kind and length.
#pragma once

#include "crypto/bytes.h"

namespace tembra::host {

enum class Kind : unsigned { buffer = 0x42554646, publicKey = 0x4B455942, device = 0x44455643 };

// A new block with these bytes; never null, throws std::bad_alloc.
unsigned char *newBlock(Kind kind, crypto::ByteView content);

// Whether this is a block of that kind; false for null.
bool isBlock(Kind kind, const void *block);

crypto::ByteView contentOf(const void *block);

// Wipes and frees a block and returns 1; returns 0 for null and for a block of another kind.
int freeBlock(Kind kind, void *block);

// The number of blocks that have not been freed.
unsigned long long liveBlocks();

} // namespace tembra::host
