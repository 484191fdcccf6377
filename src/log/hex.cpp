#include "log/hex.h"

namespace tembra {

namespace {

// Computed rather than looked up, so that the compiler can vectorise the loop.
inline char digitOf(unsigned int nibble) {
    return static_cast<char>(nibble + '0' + (nibble > 9 ? 'A' - '0' - 10 : 0));
}

std::size_t textSize(const unsigned char *data, int length) {
    return data && length > 0 ? 2 * static_cast<std::size_t>(length) + 1 : 1;
}

} // namespace

int hexEncode(const unsigned char *in, int len, char *out) {
    if (!in || !out || len == 0)
        return 0;
    for (int i = 0; i < len; ++i) {
        const std::size_t position = 2 * static_cast<std::size_t>(i);
        out[position] = digitOf(in[i] >> 4);
        out[position + 1] = digitOf(in[i] & 0x0Fu);
    }
    return 1;
}

HexText::HexText(const unsigned char *data, int length) : m_block(textSize(data, length)) {
    hexEncode(data, length, reinterpret_cast<char *>(m_block.data()));
}

} // namespace tembra
