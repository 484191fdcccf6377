// The input of a fuzzer, consumed from the front; when it is used up, every value is zero.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace tembra::fuzz {

using Bytes = std::vector<unsigned char>;

class Input {
public:
    Input(const std::uint8_t *data, std::size_t size) : m_data(data), m_size(size) {}

    bool done() const { return m_size == 0; }
    std::uint8_t byte() { return done() ? std::uint8_t{0} : *take(1); }
    std::uint32_t number() {
        std::uint32_t value = 0;
        const std::size_t count = std::min<std::size_t>(4, m_size);
        std::memcpy(&value, take(count), count);
        return value;
    }
    // True once in that many times, and never when the input is used up.
    bool once(unsigned times) { return !done() && byte() % times == times - 1; }
    template <typename Choices>
    const auto &pick(const Choices &choices) {
        return *(std::begin(choices) + byte() % static_cast<std::uint8_t>(std::size(choices)));
    }
    // Exactly this many, padded with zeros.
    Bytes bytes(std::size_t count) {
        const std::size_t available = std::min(count, m_size);
        const std::uint8_t *first = take(available);
        Bytes bytes(first, first + available);
        bytes.resize(count);
        return bytes;
    }
    Bytes rest() { return bytes(m_size); }

private:
    const std::uint8_t *take(std::size_t count) {
        const std::uint8_t *taken = m_data;
        m_data += count;
        m_size -= count;
        return taken;
    }

    const std::uint8_t *m_data;
    std::size_t m_size;
};

// A copy in a heap block of exactly its size, so that reading beyond its end is noticed.
class ExactBlock {
public:
    explicit ExactBlock(const Bytes &bytes)
        : m_data(new unsigned char[bytes.size()]), m_size(bytes.size()) {
        std::copy(bytes.begin(), bytes.end(), m_data.get());
    }
    unsigned char *data() const { return m_data.get(); }
    int size() const { return static_cast<int>(m_size); }

private:
    std::unique_ptr<unsigned char[]> m_data;
    std::size_t m_size;
};

} // namespace tembra::fuzz
