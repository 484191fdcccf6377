#include "blocks.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "crypto/secret.h"

namespace tembra::host {

namespace {

// Precedes the content and keeps it aligned as malloc's memory.
struct alignas(std::max_align_t) Header {
    std::size_t length;
    Kind kind;
};

std::atomic<unsigned long long> g_liveBlocks = 0;

const Header *headerOf(const void *block) {
    return static_cast<const Header *>(block) - 1;
}

} // namespace

unsigned char *newBlock(Kind kind, crypto::ByteView content) {
    auto *header = static_cast<Header *>(std::malloc(sizeof(Header) + content.size()));
    if (header == nullptr)
        throw std::bad_alloc();
    *header = {content.size(), kind};
    auto *block = reinterpret_cast<unsigned char *>(header + 1);
    std::ranges::copy(content, block);
    ++g_liveBlocks;
    return block;
}

bool isBlock(Kind kind, const void *block) {
    return block != nullptr && headerOf(block)->kind == kind;
}

crypto::ByteView contentOf(const void *block) {
    return {static_cast<const std::uint8_t *>(block), headerOf(block)->length};
}

int freeBlock(Kind kind, void *block) {
    if (!isBlock(kind, block))
        return 0;
    Header *header = static_cast<Header *>(block) - 1;
    crypto::wipe(header, sizeof(Header) + header->length);
    std::free(header);
    --g_liveBlocks;
    return 1;
}

unsigned long long liveBlocks() {
    return g_liveBlocks;
}

} // namespace tembra::host
