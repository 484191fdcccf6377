#include "entry.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace tembra::token::skf {

std::string_view nameArgument(const char *name, std::size_t maxLength) {
    const std::string_view text = textArgument(name);
    require(!text.empty() && text.size() <= maxLength, SAR_NAMELENERR);
    return text;
}

std::string_view textArgument(const char *text) {
    requirePointer(text);
    return text;
}

crypto::ByteView bytesArgument(const BYTE *data, ULONG length) {
    require(data != nullptr || length == 0, SAR_INVALIDPARAMERR);
    return {data, length};
}

bool roomFor(std::size_t needed, const void *out, ULONG *length) {
    requirePointer(length);
    require(needed <= std::numeric_limits<ULONG>::max(), SAR_MEMORYERR);
    const ULONG capacity = out != nullptr ? *length : 0;
    *length = static_cast<ULONG>(needed);
    require(out == nullptr || capacity >= needed, SAR_BUFFER_TOO_SMALL);
    return out != nullptr;
}

void outputBytes(crypto::ByteView bytes, void *out, ULONG *length) {
    if (roomFor(bytes.size(), out, length))
        std::copy(bytes.begin(), bytes.end(), static_cast<BYTE *>(out));
}

void outputNames(const std::vector<std::string> &names, char *out, ULONG *length) {
    std::string list;
    for (const std::string &name : names)
        list.append(name).push_back('\0');
    list.push_back('\0');
    outputBytes({reinterpret_cast<const BYTE *>(list.data()), list.size()}, out, length);
}

} // namespace tembra::token::skf
