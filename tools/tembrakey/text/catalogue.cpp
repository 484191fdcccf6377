#include "tembrakey/text/catalogue.h"

#include <cstring>

namespace tembra::tool {

std::uint32_t Catalogue::number(std::size_t offset) const {
    std::uint32_t value = 0; // little-endian, as every platform we build for
    std::memcpy(&value, m_bytes + offset, sizeof value);
    return value;
}

const char *Catalogue::find(const char *wanted) const {
    std::size_t first = 1;
    for (std::size_t end = size(); first < end;) {
        const std::size_t middle = first + (end - first) / 2;
        const int order = std::strcmp(original(middle), wanted);
        if (order == 0)
            return translation(middle);
        (order < 0 ? first : end) = order < 0 ? middle + 1 : middle;
    }
    return nullptr;
}

} // namespace tembra::tool
