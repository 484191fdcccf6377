// The arguments of the exported functions as the library works with them.
#pragma once

#include <initializer_list>

#include "crypto/bytes.h"
#include "handed_out.h"

namespace tembra::host {

// A pointer and a length as bytes. Nothing (a null view) for null and for a negative length.
inline crypto::ByteView view(const unsigned char *data, int length) {
    return data == nullptr || length < 0 ? crypto::ByteView()
                                         : crypto::ByteView(data, static_cast<std::size_t>(length));
}

// Whether every pointer and length can be worked with.
inline bool given(std::initializer_list<const void *> pointers,
                  std::initializer_list<int> lengths = {}) {
    for (const void *pointer : pointers)
        if (pointer == nullptr)
            return false;
    for (const int length : lengths)
        if (length < 0)
            return false;
    return true;
}

// Where an output goes: the caller's two pointers.
struct Output {
    unsigned char **data;
    int *length;
};

struct Outgoing {
    Output to;
    crypto::ByteView content;
};

// Hands out every content as a buffer. Either all of them are stored or, when memory runs out, none
// is and std::bad_alloc is thrown. Always 1.
int deliver(std::initializer_list<Outgoing> outputs);

} // namespace tembra::host
