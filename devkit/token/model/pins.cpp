#include "pins.h"

namespace tembra::token::model {

namespace {

constexpr std::size_t MIN_PIN_LENGTH = 6;
constexpr std::size_t MAX_PIN_LENGTH = 16;

} // namespace

void requirePinLength(std::string_view pin) {
    require(pin.size() >= MIN_PIN_LENGTH && pin.size() <= MAX_PIN_LENGTH, SAR_PIN_LEN_RANGE);
}

Pin makePin(std::string_view text, std::uint32_t maxTries, unsigned iterations) {
    requirePinLength(text);
    return {crypto::hashPin(crypto::asBytes(text), iterations), maxTries, maxTries, true};
}

void checkPin(Change &change, Pin &pin, std::string_view text, ULONG *triesLeft) {
    if (triesLeft != nullptr)
        *triesLeft = pin.triesLeft;
    requirePinLength(text);
    require(pin.triesLeft > 0, SAR_PIN_LOCKED);
    --pin.triesLeft;
    change.commit();
    if (!crypto::pinMatches(crypto::asBytes(text), pin.secret)) {
        if (triesLeft != nullptr)
            *triesLeft = pin.triesLeft;
        throw Refused{SAR_PIN_INCORRECT};
    }
    pin.triesLeft = pin.maxTries;
    change.commit();
    if (triesLeft != nullptr)
        *triesLeft = pin.triesLeft;
}

void replacePin(Pin &pin, std::string_view text) {
    pin.secret = crypto::hashPin(crypto::asBytes(text), pin.secret.iterations);
    pin.triesLeft = pin.maxTries;
    pin.isDefault = false;
}

} // namespace tembra::token::model
