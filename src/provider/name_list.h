// Lists of names as the SKF functions return them: consecutive NUL-terminated names followed by an
// additional NUL.
#pragma once

#include "platform/skf.h"

#include <cstddef>
#include <cstring>

namespace tembra {

// A zeroed buffer for a list, with an iterator. A length beyond the buffer is cut, and an
// unterminated name ends with the buffer.
template <ULONG Capacity>
class NameList {
public:
    char *buffer() { return m_buffer; }
    // In: the capacity; out: the length of the list.
    ULONG *length() { return &m_length; }

    bool isEmpty() const { return m_length == 0 || m_buffer[0] == '\0'; }

    // The next name; null at an empty name or at the end of the list.
    const char *next() {
        const ULONG end = m_length < Capacity ? m_length : Capacity;
        if (m_position >= end || m_buffer[m_position] == '\0')
            return nullptr;
        const char *name = m_buffer + m_position;
        m_position += static_cast<ULONG>(std::strlen(name)) + 1;
        return name;
    }

private:
    char m_buffer[Capacity + 1] = {}; // one NUL beyond the announced capacity
    ULONG m_length = Capacity;
    ULONG m_position = 0;
};

} // namespace tembra
