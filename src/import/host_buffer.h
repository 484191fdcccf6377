// Buffers that the host library allocates.
#pragma once

#include "platform/memory.h"
#include "platform/orvel_crypto.h"

#include <cstddef>

namespace tembra {

// Releases the buffer at the end of its scope.
class HostBuffer {
public:
    HostBuffer() = default;
    ~HostBuffer() { release(); }
    HostBuffer(const HostBuffer &) = delete;
    HostBuffer &operator=(const HostBuffer &) = delete;

    void release() {
        if (m_data)
            OrvelPKICryptoFreeMemory(m_data);
        m_data = nullptr;
    }

    // For the library to fill.
    unsigned char **data() { return &m_data; }
    int *length() { return &m_length; }

    const unsigned char *bytes() const { return m_data; }
    // 0 without a buffer.
    std::size_t size() const {
        return m_data && m_length > 0 ? static_cast<std::size_t>(m_length) : 0;
    }

protected:
    unsigned char *m_data = nullptr;
    int m_length = 0;
};

// The same for a secret: wiped before it is released.
class SecretHostBuffer : public HostBuffer {
public:
    ~SecretHostBuffer() { release(); }

    void release() {
        platform::wipe(m_data, size());
        HostBuffer::release();
    }
};

} // namespace tembra
