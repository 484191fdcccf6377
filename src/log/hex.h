// Hex texts for the trace log.
#pragma once

#include "platform/memory.h"

namespace tembra {

// Writes two characters a byte, high nibble first, 0 to 9 and A to F, without a closing NUL; out
// holds 2 * len characters. Returns 0 without writing when in or out is null or len is 0, and 1
// without writing when len is negative.
int hexEncode(const unsigned char *in, int len, char *out);

// The hex text of a buffer, wiped before it is freed: it can show plaintext.
class HexText {
public:
    // Null data, or a length that is not positive, gives an empty text.
    HexText(const unsigned char *data, int length);
    // Null when memory was short.
    const char *text() const { return reinterpret_cast<const char *>(m_block.data()); }

private:
    SecretBlock m_block;
};

} // namespace tembra
