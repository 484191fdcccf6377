#include "containers.h"

#include <utility>

namespace tembra::token::model {

namespace {

ULONG typeOf(const crypto::PrivateKey &key) {
    return std::holds_alternative<crypto::RsaPrivateKey>(key) ? CONTAINER_TYPE_RSA
                                                              : CONTAINER_TYPE_ECC;
}

} // namespace

ULONG containerType(const Container &container) {
    for (const KeySlot *slot : {&container.signature, &container.encryption})
        if (slot->key)
            return typeOf(*slot->key);
    return CONTAINER_TYPE_EMPTY;
}

void putKey(Container &container, bool signature, crypto::PrivateKey key) {
    const ULONG type = containerType(container);
    require(type == CONTAINER_TYPE_EMPTY || type == typeOf(key), SAR_KEYUSAGEERR);
    KeySlot &slot = slotOf(container, signature);
    slot.key = std::move(key);
    slot.certificate.clear();
}

} // namespace tembra::token::model
