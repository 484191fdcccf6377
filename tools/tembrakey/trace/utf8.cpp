#include "tembrakey/trace/utf8.h"

#include <cstdio>

namespace tembra::trace {

namespace {

// Bytes of the character that begins with these, 0 when none does.
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    const auto follows = [&](std::size_t i) { return (byte(i) & 0xC0u) == 0x80u; };
    const unsigned first = byte(0);
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first < 0xE0 && follows(1))
        return 2;
    if ((first & 0xF0u) == 0xE0u && follows(1) && follows(2)) {
        const unsigned value = (first & 0x0Fu) << 12 | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu);
        return value >= 0x800 && (value < 0xD800 || value > 0xDFFF) ? 3 : 0;
    }
    if (first >= 0xF0 && first < 0xF5 && follows(1) && follows(2) && follows(3)) {
        const unsigned high = (first & 0x07u) << 2 | (byte(1) & 0x30u) >> 4; // the plane
        return high >= 1 && high <= 16 ? 4 : 0;
    }
    return 0;
}

} // namespace

std::string_view takeCharacter(std::string_view &text) {
    const std::size_t length = characterLength(text);
    const std::string_view character =
        length == 0 ? std::string_view("\xEF\xBF\xBD") : text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
    return character;
}

std::string printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const auto byte = static_cast<unsigned char>(text[0]);
        const std::size_t length = characterLength(text);
        const bool isControl =
            (byte < 0x20 && byte != '\t') || byte == 0x7F ||
            (length == 2 && byte == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0);
        if (isControl) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X",
                          length == 2 ? static_cast<unsigned char>(text[1]) : byte);
            shown += escape;
        } else {
            shown += text.substr(0, length == 0 ? 1 : length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return shown;
}

} // namespace tembra::trace
