#include "rsa_padding.h"

#include <algorithm>

#include "random.h"

namespace tembra::crypto {

namespace {

constexpr std::size_t MIN_PADDING = 8;
constexpr std::size_t FRAME = 3; // the two leading bytes and the zero before the data

// A block with everything but the padding, which stands at offset 2.
std::optional<SecretBytes> framed(std::uint8_t type, ByteView data, std::size_t blockSize) {
    if (blockSize < FRAME + MIN_PADDING || data.size() > blockSize - FRAME - MIN_PADDING)
        return std::nullopt;
    SecretBytes block(blockSize);
    block[1] = type;
    std::copy(data.begin(), data.end(), block.end() - static_cast<std::ptrdiff_t>(data.size()));
    return block;
}

std::span<std::uint8_t> paddingOf(SecretBytes &block, std::size_t dataSize) {
    return std::span(block).subspan(2, block.size() - FRAME - dataSize);
}

} // namespace

std::optional<SecretBytes> padForSignature(ByteView data, std::size_t blockSize) {
    auto block = framed(1, data, blockSize);
    if (block)
        std::ranges::fill(paddingOf(*block, data.size()), std::uint8_t{0xFF});
    return block;
}

std::optional<SecretBytes> padForEncryption(ByteView data, std::size_t blockSize) {
    auto block = framed(2, data, blockSize);
    if (block) {
        const auto padding = paddingOf(*block, data.size());
        fillRandom(padding);
        for (std::size_t i = 0; i < padding.size(); ++i)
            while (padding[i] == 0)
                fillRandom(padding.subspan(i, 1));
    }
    return block;
}

std::optional<SecretBytes> unpadEncryption(ByteView block) {
    if (block.size() < FRAME + MIN_PADDING || block[0] != 0 || block[1] != 2)
        return std::nullopt;
    const auto padding = block.subspan(2);
    const auto zero = std::find(padding.begin(), padding.end(), std::uint8_t{0});
    if (zero == padding.end() || zero - padding.begin() < static_cast<std::ptrdiff_t>(MIN_PADDING))
        return std::nullopt;
    return SecretBytes(zero + 1, padding.end());
}

} // namespace tembra::crypto
