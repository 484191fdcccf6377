// Reads and writes key pair blobs, whose integers are unsigned, 4 bytes long and big-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tembra {

// A view of bytes that only shrinks: check what remains, then take bytes from its front.
class BlobReader {
public:
    BlobReader(const unsigned char *data, std::size_t size) : m_data(data), m_size(size) {}

    std::size_t remaining() const { return m_size; }
    bool has(std::uint64_t size) const { return m_size >= size; }

    // The next size bytes; the caller has checked has(size).
    const unsigned char *take(std::size_t size) {
        const unsigned char *taken = m_data;
        m_data += size;
        m_size -= size;
        return taken;
    }
    std::uint32_t takeNumber() {
        const unsigned char *b = take(4);
        return static_cast<std::uint32_t>(b[0]) << 24 | static_cast<std::uint32_t>(b[1]) << 16 |
               static_cast<std::uint32_t>(b[2]) << 8 | b[3];
    }
    unsigned char takeByte() { return *take(1); }

private:
    const unsigned char *m_data;
    std::size_t m_size;
};

// Writes into a buffer of fixed capacity. Bytes that do not fit are dropped and make ok() false.
class BlobWriter {
public:
    BlobWriter(unsigned char *data, std::size_t capacity) : m_data(data), m_capacity(capacity) {}

    void bytes(const void *data, std::size_t size) {
        if (!m_ok || size > m_capacity - m_size) {
            m_ok = false;
            return;
        }
        if (size > 0)
            std::memcpy(m_data + m_size, data, size);
        m_size += size;
    }
    void number(std::uint32_t value) {
        const unsigned char b[4] = {
            static_cast<unsigned char>(value >> 24), static_cast<unsigned char>(value >> 16),
            static_cast<unsigned char>(value >> 8), static_cast<unsigned char>(value)};
        bytes(b, sizeof(b));
    }
    void byte(unsigned char value) { bytes(&value, 1); }

    bool ok() const { return m_ok; }
    std::size_t size() const { return m_size; }

private:
    unsigned char *m_data;
    std::size_t m_capacity;
    std::size_t m_size = 0;
    bool m_ok = true;
};

} // namespace tembra
