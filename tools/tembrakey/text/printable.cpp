#include "tembrakey/text/printable.h"

#include <cstdio>

namespace tembra::tool {

std::string printable(std::string_view text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        const bool isLater = byte == 0xC2 && next >= 0x80 && next < 0xA0; // U+0080 to U+009F
        if (byte >= ' ' && byte != 0x7F && !isLater) {
            shown += text[i];
            continue;
        }
        if (isLater) {
            byte = next;
            ++i;
        }
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned>(byte));
        shown += escape;
    }
    return shown;
}

} // namespace tembra::tool
