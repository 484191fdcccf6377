// Arguments in which bytes and text go in and come out.
#pragma once

#include "provider_run.h"

namespace tembra::fuzz {

// A buffer of exactly the capacity that is told, or none, or one whose capacity is told as
// negative.
class Output {
public:
    explicit Output(Input &in) {
        const unsigned kind = in.byte();
        const int size = kind % 4 == 0 ? static_cast<int>(in.number() % 1400) : in.byte() % 100;
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

    // A buffer that is refused for its size stays as it was.
    void check(int result) const {
        require(result >= -19 && result <= 1, "a result that there is not");
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

// Bytes that go in: exactly as many as are told, or none, or a negative number of them.
class Data {
public:
    explicit Data(Input &in) {
        const unsigned kind = in.byte();
        const std::size_t size = kind % 8 == 0 ? in.number() % 3000 : in.byte() % 64;
        m_length = kind % 16 == 1 ? -static_cast<int>(size) : static_cast<int>(size);
        if (kind % 8 != 2) {
            Bytes bytes = in.bytes(std::min<std::size_t>(size, 64));
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

// A text that occurs, or any other, or none.
class Text {
public:
    Text(Input &in, std::initializer_list<const char *> usual) {
        const unsigned kind = in.byte() % 16;
        std::string text;
        if (kind == 1) {
            const Bytes any = in.bytes(in.byte() % 70);
            text.assign(any.begin(), any.end());
        } else {
            text = in.pick(usual);
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
