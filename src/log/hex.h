// Hex texts for the trace log.
#pragma once

#include "platform/memory.h"

namespace tembra {

// Writes two characters per byte, high nibble first, 0 to 9 and A to F, without a NUL; out must
// have room for 2 * len characters. Returns 0 without writing if in or out is null or len is 0, and
// 1 without writing if len is negative.
int hexEncode(const unsigned char *in, int len, char *out);

// The hex text of a buffer. It can contain plaintext, so it is wiped before it is freed.
class HexText {
public:
    // Null data or a length that is not positive results in an empty text.
    HexText(const unsigned char *data, int length);
    // Null if memory ran out.
    const char *text() const { return reinterpret_cast<const char *>(m_block.data()); }

private:
    SecretBlock m_block;
};

} // namespace tembra
