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
        capacity_ = kind % 16 == 1 ? -size : size;
        if (kind % 8 != 2)
            block_ = std::make_unique<ExactBlock>(Bytes(static_cast<std::size_t>(size), untouched));
        needed_ = kind % 32 == 3 ? nullptr : &length_;
    }

    unsigned char *data() const { return block_ ? block_->data() : nullptr; }
    char *text() const { return reinterpret_cast<char *>(data()); }
    int capacity() const { return capacity_; }
    int size() const { return block_ ? block_->size() : 0; }
    int *needed() const { return needed_; }

    // A buffer that is refused for its size stays as it was.
    void check(int result) const {
        require(result >= -19 && result <= 1, "a result that there is not");
        for (int i = 0; result == ORVEL_PKI_MOREDATA && i < size(); ++i)
            require(data()[i] == untouched, "a refused buffer is written to");
    }

private:
    static constexpr unsigned char untouched = 0xEE;
    std::unique_ptr<ExactBlock> block_;
    int capacity_ = 0;
    int length_ = 0;
    int *needed_ = nullptr;
};

// Bytes that go in: exactly as many as are told, or none, or a negative number of them.
class Data {
public:
    explicit Data(Input &in) {
        const unsigned kind = in.byte();
        const std::size_t size = kind % 8 == 0 ? in.number() % 3000 : in.byte() % 64;
        length_ = kind % 16 == 1 ? -static_cast<int>(size) : static_cast<int>(size);
        if (kind % 8 != 2) {
            Bytes bytes = in.bytes(std::min<std::size_t>(size, 64));
            bytes.resize(size, 0x42);
            block_ = std::make_unique<ExactBlock>(bytes);
        }
    }

    const unsigned char *data() const { return block_ ? block_->data() : nullptr; }
    int length() const { return length_; }

private:
    std::unique_ptr<ExactBlock> block_;
    int length_ = 0;
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
            block_ = std::make_unique<ExactBlock>(Bytes(first, first + std::strlen(first) + 1));
        }
    }

    operator const char *() const {
        return block_ ? reinterpret_cast<const char *>(block_->data()) : nullptr;
    }

private:
    std::unique_ptr<ExactBlock> block_;
};

} // namespace tembra::fuzz
