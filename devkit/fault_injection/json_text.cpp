#include "json_text.h"

#include <algorithm>

namespace tembra::door {

namespace {

constexpr char HEX_DIGITS[] = "0123456789abcdef";

unsigned char byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

// The length of the character of several bytes that the text starts with, 0 when there is none.
std::size_t multibyteLength(std::string_view text) {
    const unsigned lead = byteAt(text, 0);
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byteAt(text, i) & 0xC0) != 0x80)
            return 0;
    const unsigned second = byteAt(text, 1);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool surrogate = lead == 0xED && second >= 0xA0;
    const bool tooLarge = lead == 0xF4 && second >= 0x90;
    return overlong || surrogate || tooLarge ? 0 : length;
}

void appendAscii(std::string &out, char c) {
    if (c == '"' || c == '\\') {
        out += '\\';
        out += c;
    } else if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F) {
        out += c;
    } else {
        out += "\\u00";
        out += HEX_DIGITS[static_cast<unsigned char>(c) >> 4];
        out += HEX_DIGITS[static_cast<unsigned char>(c) & 0x0F];
    }
}

} // namespace

std::string jsonText(std::string_view text) {
    std::string out = "\"";
    while (!text.empty()) {
        if (byteAt(text, 0) < 0x80) {
            appendAscii(out, text.front());
            text.remove_prefix(1);
            continue;
        }
        const std::size_t length = multibyteLength(text);
        out += length != 0 ? text.substr(0, length) : std::string_view("\xEF\xBF\xBD");
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out + "\"";
}

std::string jsonHex(std::span<const std::uint8_t> bytes, std::size_t limit) {
    std::string out = "\"";
    for (const std::uint8_t byte : bytes.first(std::min(limit, bytes.size()))) {
        out += HEX_DIGITS[byte >> 4];
        out += HEX_DIGITS[byte & 0x0F];
    }
    return out + "\"";
}

} // namespace tembra::door
