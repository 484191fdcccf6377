#include "pins.h"

#include "crypto/digest.h"
#include "crypto/random.h"

namespace tembra::token::model {

namespace {

constexpr std::size_t MIN_PIN_LENGTH = 6;
constexpr std::size_t MAX_PIN_LENGTH = 16;
constexpr std::size_t SALT_SIZE = 16;

crypto::Bytes digestOfPin(const crypto::Bytes &salt, std::string_view pin) {
    crypto::Digest digest(crypto::DigestAlgorithm::sm3);
    digest.update(salt);
    digest.update(crypto::asBytes(pin));
    return digest.value();
}

} // namespace

void requirePinLength(std::string_view pin) {
    require(pin.size() >= MIN_PIN_LENGTH && pin.size() <= MAX_PIN_LENGTH, SAR_PIN_LEN_RANGE);
}

Pin makePin(std::string_view text, std::uint32_t maxTries) {
    requirePinLength(text);
    Pin pin;
    pin.salt.resize(SALT_SIZE);
    crypto::fillRandom(pin.salt);
    pin.digest = digestOfPin(pin.salt, text);
    pin.maxTries = pin.triesLeft = maxTries;
    return pin;
}

void checkPin(Change &change, Pin &pin, std::string_view text, ULONG *triesLeft) {
    ULONG unused = 0;
    ULONG &left = triesLeft != nullptr ? *triesLeft : unused;
    left = pin.triesLeft;
    requirePinLength(text);
    require(pin.triesLeft > 0, SAR_PIN_LOCKED);
    --pin.triesLeft;
    change.commit();
    left = pin.triesLeft;
    require(crypto::equalConstantTime(digestOfPin(pin.salt, text), pin.digest), SAR_PIN_INCORRECT);
    left = pin.triesLeft = pin.maxTries;
    change.commit();
}

void replacePin(Pin &pin, std::string_view text) {
    pin = makePin(text, pin.maxTries);
    pin.isDefault = false;
}

} // namespace tembra::token::model
