// Reading arguments and returning outputs.
#pragma once

#include <initializer_list>

#include "crypto/bytes.h"

namespace tembra::host {

// A pointer and a length as bytes; empty if the pointer is null or the length negative.
inline crypto::ByteView view(const unsigned char *data, int length) {
    return data == nullptr || length < 0 ? crypto::ByteView()
                                         : crypto::ByteView(data, static_cast<std::size_t>(length));
}

// Whether no pointer is null and no length negative.
inline bool areValid(std::initializer_list<const void *> pointers,
                     std::initializer_list<int> lengths = {}) {
    for (const void *pointer : pointers)
        if (pointer == nullptr)
            return false;
    for (const int length : lengths)
        if (length < 0)
            return false;
    return true;
}

// The caller's two pointers for a buffer, and what the buffer is to contain.
struct Output {
    unsigned char **data;
    int *length;
    crypto::ByteView content;
};

// Returns a new buffer for each output, and 1. Returns none, and 0, if the length of one exceeds an
// int; throws std::bad_alloc if memory runs out.
int outputBuffers(std::initializer_list<Output> outputs);

} // namespace tembra::host
