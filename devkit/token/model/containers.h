// The rules of containers: one kind of key, a place for the signature and one for the encryption.
#pragma once

#include "image.h"
#include "refused.h"

namespace tembra::token::model {

constexpr std::size_t MAX_CONTAINERS = 64;     // of an application
constexpr std::size_t MAX_CONTAINER_NAME = 64; // bytes

ULONG containerType(const Container &container); // CONTAINER_TYPE_...

const KeySlot &slotOf(const Container &container, bool signature);
KeySlot &slotOf(Container &container, bool signature);

// The key in that place; Refused(SAR_KEYNOTFOUNTERR) when there is none or it is of another kind.
template <typename Key>
const Key &keyOf(const Container &container, bool signature) {
    const KeySlot &slot = slotOf(container, signature);
    const Key *key = slot.key ? std::get_if<Key>(&*slot.key) : nullptr;
    require(key != nullptr, SAR_KEYNOTFOUNTERR);
    return *key;
}

// Puts a key into its place. One that was there goes, with the certificate that was made for it.
// Refused(SAR_KEYUSAGEERR) when the container holds keys of the other kind.
void putKey(Container &container, bool signature, crypto::PrivateKey key);

} // namespace tembra::token::model
