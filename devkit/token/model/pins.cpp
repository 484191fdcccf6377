#include "pins.h"

namespace tembra::token::model {

namespace {

constexpr std::size_t minPinLength = 6;
constexpr std::size_t maxPinLength = 16;

crypto::ByteView bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()};
}

} // namespace

void requirePinLength(std::string_view pin) {
    require(pin.size() >= minPinLength && pin.size() <= maxPinLength, SAR_PIN_LEN_RANGE);
}

Pin makePin(std::string_view text, std::uint32_t maxTries, unsigned iterations) {
    requirePinLength(text);
    return {crypto::hashPin(bytesOf(text), iterations), maxTries, maxTries, true};
}

void checkPin(Change &change, Pin &pin, std::string_view text, ULONG *triesLeft) {
    if (triesLeft != nullptr) {
        *triesLeft = pin.triesLeft;
    }
    requirePinLength(text);
    require(pin.triesLeft > 0, SAR_PIN_LOCKED);
    --pin.triesLeft;
    change.commit();
    if (!crypto::pinMatches(bytesOf(text), pin.secret)) {
        if (triesLeft != nullptr) {
            *triesLeft = pin.triesLeft;
        }
        throw Refused{SAR_PIN_INCORRECT};
    }
    pin.triesLeft = pin.maxTries;
    change.commit();
    if (triesLeft != nullptr) {
        *triesLeft = pin.triesLeft;
    }
}

void replacePin(Pin &pin, std::string_view text) {
    pin.secret = crypto::hashPin(bytesOf(text), pin.secret.iterations);
    pin.triesLeft = pin.maxTries;
    pin.isDefault = false;
}

} // namespace tembra::token::model
