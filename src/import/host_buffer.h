// A buffer that the host library hands out.
#pragma once

#include "platform/memory.h"
#include "platform/orvel_crypto.h"

#include <cstddef>

namespace tembra {

// Gives the buffer back when its scope ends, whatever path leaves it.
class HostBuffer {
public:
    HostBuffer() = default;
    ~HostBuffer() {
        if (m_data)
            OrvelPKICryptoFreeMemory(m_data);
    }
    HostBuffer(const HostBuffer &) = delete;
    HostBuffer &operator=(const HostBuffer &) = delete;

    // For the library to fill.
    unsigned char **data() { return &m_data; }
    int *length() { return &m_length; }

    const unsigned char *bytes() const { return m_data; }
    // 0 for a buffer that is not there.
    std::size_t size() const {
        return m_data && m_length > 0 ? static_cast<std::size_t>(m_length) : 0;
    }

protected:
    unsigned char *m_data = nullptr;
    int m_length = 0;
};

// The same for a secret: wiped before it is given back.
class SecretHostBuffer : public HostBuffer {
public:
    ~SecretHostBuffer() { platform::wipe(m_data, size()); }
};

} // namespace tembra
