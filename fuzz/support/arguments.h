// Arguments of entry points: buffers, data and texts.
#pragma once

#include "provider_run.h"

namespace tembra::fuzz {

// An output buffer of exactly the capacity passed, or null, or one with a negative capacity.
class Output {
public:
    explicit Output(Input &input) {
        const unsigned kind = input.byte();
        const int size =
            kind % 4 == 0 ? static_cast<int>(input.number() % 1400) : input.byte() % 100;
        m_capacity = kind % 16 == 1 ? -size : size;
        if (kind % 8 != 2)
            m_block =
                std::make_unique<ExactBlock>(Bytes(static_cast<std::size_t>(size), UNTOUCHED));
        m_needed = kind % 32 == 3 ? nullptr : &m_length;
    }

    unsigned char *data() const { return m_block ? m_block->data() : nullptr; }
    char *text() const { return reinterpret_cast<char *>(data()); }
    int capacity() const { return m_capacity; }
    int size() const { return m_block ? m_block->size() : 0; }
    int *needed() const { return m_needed; }

    // A buffer that was refused as too small must be unchanged.
    void check(int result) const {
        require(result >= -19 && result <= 1, "an undefined result");
        for (int i = 0; result == ORVEL_PKI_MOREDATA && i < size(); ++i)
            require(data()[i] == UNTOUCHED, "a refused buffer is written to");
    }

private:
    static constexpr unsigned char UNTOUCHED = 0xEE;
    std::unique_ptr<ExactBlock> m_block;
    int m_capacity = 0;
    int m_length = 0;
    int *m_needed = nullptr;
};

// Input data: exactly as many bytes as the length says, or null, or a negative length.
class Data {
public:
    explicit Data(Input &input) {
        const unsigned kind = input.byte();
        const std::size_t size = kind % 8 == 0 ? input.number() % 3000 : input.byte() % 64;
        m_length = kind % 16 == 1 ? -static_cast<int>(size) : static_cast<int>(size);
        if (kind % 8 != 2) {
            Bytes bytes = input.bytes(std::min<std::size_t>(size, 64));
            bytes.resize(size, 0x42);
            m_block = std::make_unique<ExactBlock>(bytes);
        }
    }

    const unsigned char *data() const { return m_block ? m_block->data() : nullptr; }
    int length() const { return m_length; }

private:
    std::unique_ptr<ExactBlock> m_block;
    int m_length = 0;
};

// One of the usual texts, any other, or null.
class Text {
public:
    Text(Input &input, std::initializer_list<const char *> usual) {
        const unsigned kind = input.byte() % 16;
        std::string text;
        if (kind == 1) {
            const Bytes any = input.bytes(input.byte() % 70);
            text.assign(any.begin(), any.end());
        } else {
            text = input.pick(usual);
        }
        if (kind != 2) {
            const char *first = text.c_str();
            m_block = std::make_unique<ExactBlock>(Bytes(first, first + std::strlen(first) + 1));
        }
    }

    operator const char *() const {
        return m_block ? reinterpret_cast<const char *>(m_block->data()) : nullptr;
    }

private:
    std::unique_ptr<ExactBlock> m_block;
};

} // namespace tembra::fuzz
