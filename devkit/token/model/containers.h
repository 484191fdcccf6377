// Containers: a signature key and an encryption key, both RSA or both SM2.
#pragma once

#include "error.h"
#include "image.h"

namespace tembra::token::model {

constexpr std::size_t MAX_CONTAINERS = 64;     // of an application
constexpr std::size_t MAX_CONTAINER_NAME = 64; // bytes

ULONG containerType(const Container &container); // CONTAINER_TYPE_...

template <typename AnyContainer>
auto &slotOf(AnyContainer &container, bool signature) {
    return signature ? container.signature : container.encryption;
}

// Error(SAR_KEYNOTFOUNTERR) if there is no such key or it is of another kind.
template <typename Key>
const Key &keyOf(const Container &container, bool signature) {
    const KeySlot &slot = slotOf(container, signature);
    const Key *key = slot.key ? std::get_if<Key>(&*slot.key) : nullptr;
    require(key != nullptr, SAR_KEYNOTFOUNTERR);
    return *key;
}

// Stores a key, replacing the previous one and its certificate. Error(SAR_KEYUSAGEERR) if the
// container holds a key of the other kind.
void putKey(Container &container, bool signature, crypto::PrivateKey key);

} // namespace tembra::token::model
