// Text from tokens, certificates and files, made safe for terminals.
#pragma once

#include <string>
#include <string_view>

namespace tembra::tool {

// Escapes control characters, which could steer a terminal.
inline std::string printable(std::string_view text) {
    constexpr std::string_view HEX = "0123456789ABCDEF";
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0xFFu;
        const bool isC1 = text[i] == '\xC2' && next >= 0x80 && next < 0xA0; // in UTF-8
        const auto byte = isC1 ? next : static_cast<unsigned char>(text[i]);
        if ((byte < 0x20 && byte != '\t') || byte == 0x7F || isC1)
            (shown += "\\x").append({HEX[byte >> 4], HEX[byte & 15]});
        else
            shown += text[i];
        i += isC1 ? 1 : 0;
    }
    return shown;
}

} // namespace tembra::tool
