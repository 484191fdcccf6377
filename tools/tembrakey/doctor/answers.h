// What token functions answer, read with suspicion.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/skf.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

// "0x0A000023 (the token was removed)"; the meaning only of well-known codes.
std::string resultText(ULONG result);

// A record that a token fills, with room behind it for what it should not write.
template <typename T>
class Guarded {
public:
    Guarded() { m_room.fill(MARK); }
    BYTE *bytes() { return reinterpret_cast<BYTE *>(&m_value); }
    T *get() { return &m_value; }
    const T *operator->() const { return &m_value; }
    bool isOverrun() const {
        return std::any_of(m_room.begin(), m_room.end(), [](BYTE byte) { return byte != MARK; });
    }

private:
    static constexpr BYTE MARK = 0xA7;
    T m_value = {};
    std::array<BYTE, 4096> m_room;
};

// A fixed text field, which holds no NUL when it is full.
std::string fieldText(const CHAR *field, std::size_t size);

struct NameList {
    ULONG result = 0;
    std::vector<std::string> names;
    std::vector<std::string> complaints; // what is wrong with the answer, translated
};

// Reads the raw answer, whose length the token gave as `length`. capacity is what it was told of,
// and the bytes go on behind it.
void readNames(std::string_view bytes, ULONG capacity, ULONG length, NameList &list);

// Asks for a name list as the provider does, in a buffer of `capacity` bytes, and first for its
// length. ask is called as ask(buffer, &length).
template <typename Ask>
NameList askNames(ULONG capacity, Ask ask) {
    NameList list;
    ULONG wanted = 0;
    const ULONG asked = ask(static_cast<LPSTR>(nullptr), &wanted);
    std::string buffer(capacity + 4096, '\x27');
    ULONG length = capacity;
    list.result = ask(buffer.data(), &length);
    if (list.result == SAR_OK)
        readNames(buffer, capacity, length, list);
    if (list.result == SAR_OK && asked == SAR_OK && length <= capacity && wanted < length)
        list.complaints.push_back(tr("the length that it tells in advance is too short"));
    return list;
}

} // namespace tembra::tool::doctor
