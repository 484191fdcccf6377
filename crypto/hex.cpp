#include "hex.h"

namespace tembra::crypto {

namespace {

int digitValue(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

} // namespace

std::string toHex(ByteView bytes) {
    constexpr char digits[] = "0123456789abcdef";
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
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = digitValue(text[i]);
        const int low = digitValue(text[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        out.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return out;
}

} // namespace tembra::crypto
