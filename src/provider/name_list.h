// Lists of names as the SKF functions return them: NUL-terminated names one after another, ended by
// one more NUL.
#pragma once

#include "platform/skf.h"

#include <cstddef>
#include <cstring>

namespace tembra {

// A zeroed buffer for a list, and the walk over it. A length beyond the buffer is cut to it, a name
// without NUL ends at the buffer's end.
template <ULONG Capacity>
class NameList {
public:
    char *buffer() { return m_buffer; }
    // The capacity going into the SKF call, the length of the list coming out.
    ULONG *length() { return &m_length; }

    bool isEmpty() const { return m_length == 0 || m_buffer[0] == '\0'; }

    // The next name; null at an empty name or where the list's length ends.
    const char *next() {
        const ULONG end = m_length < Capacity ? m_length : Capacity;
        if (m_position >= end || m_buffer[m_position] == '\0')
            return nullptr;
        const char *name = m_buffer + m_position;
        m_position += static_cast<ULONG>(std::strlen(name)) + 1;
        return name;
    }

private:
    char m_buffer[Capacity + 1] = {}; // one NUL more than the token is told of
    ULONG m_length = Capacity;
    ULONG m_position = 0;
};

} // namespace tembra
