#include "image.h"

#include "crypto/hex.h"
#include "crypto/random.h"

#include <array>

namespace tembra::token::model {

namespace {

// What the file system of a card would need for an entry besides its content.
constexpr std::uint64_t APPLICATION_OVERHEAD = 256;
constexpr std::uint64_t CONTAINER_OVERHEAD = 64;
constexpr std::uint64_t FILE_OVERHEAD = 48;

std::uint64_t sizeOf(const crypto::PrivateKey &key) {
    if (const auto *rsa = std::get_if<crypto::RsaPrivateKey>(&key))
        return rsa->n.size() * 9 / 2 + rsa->e.size(); // n, d and five numbers of half the length
    return 3 * crypto::SM2_SIZE;
}

std::uint64_t sizeOf(const KeySlot &slot) {
    return slot.certificate.size() + (slot.key ? sizeOf(*slot.key) : 0);
}

std::uint64_t sizeOf(const Application &application) {
    std::uint64_t size = APPLICATION_OVERHEAD;
    for (const Container &container : application.containers)
        size += CONTAINER_OVERHEAD + sizeOf(container.signature) + sizeOf(container.encryption);
    for (const File &file : application.files)
        size += FILE_OVERHEAD + file.content.size();
    return size;
}

} // namespace

std::string randomId() {
    std::array<std::uint8_t, 8> bytes{};
    crypto::fillRandom(bytes);
    return crypto::toHex(bytes);
}

std::uint64_t usedSpace(const Image &image) {
    std::uint64_t size = 0;
    for (const Application &application : image.applications)
        size += sizeOf(application);
    return size;
}

} // namespace tembra::token::model
