#include "handed_out.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "crypto/secret.h"

namespace tembra::host {

namespace {

// Stands before the bytes that are handed out and keeps them aligned as malloc's.
struct alignas(std::max_align_t) Header {
    std::size_t length;
    Kind kind;
};

std::atomic<unsigned long long> live = 0;

unsigned char *bytesOf(Header *header) {
    return reinterpret_cast<unsigned char *>(header + 1);
}

const Header *headerOf(const void *block) {
    return static_cast<const Header *>(block) - 1;
}

} // namespace

unsigned char *handOut(Kind kind, crypto::ByteView content) {
    // A byte more, so that an empty content is a block as well.
    auto *header = static_cast<Header *>(std::malloc(sizeof(Header) + content.size() + 1));
    if (header == nullptr)
        throw std::bad_alloc();
    *header = {content.size(), kind};
    std::ranges::copy(content, bytesOf(header));
    ++live;
    return bytesOf(header);
}

crypto::ByteView contentOf(const void *block) {
    return {static_cast<const std::uint8_t *>(block), headerOf(block)->length};
}

bool isA(Kind kind, const void *block) {
    return block != nullptr && headerOf(block)->kind == kind;
}

bool takeBack(Kind kind, void *block) {
    if (!isA(kind, block))
        return false;
    Header *header = static_cast<Header *>(block) - 1;
    crypto::wipe(header, sizeof(Header) + header->length);
    std::free(header);
    --live;
    return true;
}

unsigned long long liveBlocks() {
    return live;
}

} // namespace tembra::host
