#include "hex.h"

#include <charconv>

namespace tembra::crypto {

std::string toHex(ByteView bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        out += digits[byte >> 4];
        out += digits[byte & 0x0F];
    }
    return out;
}

std::optional<Bytes> fromHex(std::string_view text) {
    if (text.size() % 2 != 0)
        return std::nullopt;
    Bytes out;
    out.reserve(text.size() / 2);
    for (; !text.empty(); text.remove_prefix(2)) {
        const char *end = text.data() + 2;
        if (std::from_chars(text.data(), end, out.emplace_back(), 16).ptr != end)
            return std::nullopt;
    }
    return out;
}

} // namespace tembra::crypto
