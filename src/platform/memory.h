// Memory blocks, plain ones and those for secrets.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace tembra {

namespace platform {
// Overwrites memory, which may be null, with zeros; the compiler does not optimise this away.
void wipe(void *memory, std::size_t size);
} // namespace platform

// Returns a zeroed block, also for a size of 0, or null. Free it with std::free.
inline void *allocateZeroed(std::size_t size) {
    if (size == 0)
        size = 1;
    void *memory = std::malloc(size);
    if (memory)
        std::memset(memory, 0, size);
    return memory;
}

// Returns a zeroed record or null. Free it with std::free.
template <typename Record>
Record *allocateRecord() {
    return static_cast<Record *>(allocateZeroed(sizeof(Record)));
}

// Returns a copy or null. Free it with std::free.
inline char *copyText(const char *text) {
    const std::size_t size = std::strlen(text) + 1;
    char *copy = static_cast<char *>(std::malloc(size));
    if (copy)
        std::memcpy(copy, text, size);
    return copy;
}

// A zeroed heap block that is wiped before it is freed. data() is null if memory ran out.
class SecretBlock {
public:
    explicit SecretBlock(std::size_t size)
        : m_data(static_cast<unsigned char *>(allocateZeroed(size))), m_size(size) {}
    ~SecretBlock() {
        platform::wipe(m_data, m_data ? m_size : 0);
        std::free(m_data);
    }
    SecretBlock(const SecretBlock &) = delete;
    SecretBlock &operator=(const SecretBlock &) = delete;

    unsigned char *data() const { return m_data; }
    std::size_t size() const { return m_size; }

private:
    unsigned char *m_data;
    std::size_t m_size;
};

// A zeroed array on the stack that is wiped at the end of its scope.
template <std::size_t Size>
class SecretArray {
public:
    SecretArray() = default;
    ~SecretArray() { platform::wipe(m_data, Size); }
    SecretArray(const SecretArray &) = delete;
    SecretArray &operator=(const SecretArray &) = delete;

    unsigned char *data() { return m_data; }
    const unsigned char *data() const { return m_data; }
    static constexpr std::size_t size() { return Size; }

private:
    unsigned char m_data[Size] = {};
};

} // namespace tembra
