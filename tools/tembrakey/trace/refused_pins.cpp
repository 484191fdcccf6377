#include "tembrakey/trace/refused_pins.h"

#include <charconv>

#include "tembrakey/trace/entry_points.h"

namespace tembra::trace {

namespace {

constexpr std::size_t MOST_DEVICES = 64;
constexpr int MOST_TRIES = 99; // more is not a number of tries, but what the host had there

// -1: none printed.
int triesOf(std::string_view text) {
    int tries = -1;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), tries);
    return parsed.ptr == text.data() + text.size() && tries <= MOST_TRIES ? tries : -1;
}

} // namespace

std::optional<RefusedPin> RefusedPins::add(const Line &line, std::uint64_t number) {
    // The call fails for another reason, and says so.
    if (line.level == Level::error)
        std::erase_if(m_last,
                      [&](const auto &one) { return one.second.pin.thread == line.thread; });
    const bool isAttempt = line.function == "DeviceVerifyPwd" || line.function == "DeviceChangePwd";
    if (line.level != Level::information || (!isAttempt && line.function != "DeviceUnlockPwd" &&
                                             line.function != "DeviceGetPwdRetryNum"))
        return std::nullopt;
    std::string device;
    int tries = -1;
    for (const auto &[name, value] : readArguments(line.function, line.message)) {
        if (name == "hDevice" || name == "type")
            (device += value) += ' ';
        else if (name == "pretrynum" &&
                 line.function != "DeviceUnlockPwd") // which prints a pointer
            tries = triesOf(value);
    }
    std::optional<RefusedPin> refused;
    const auto last = m_last.find(device);
    if (last != m_last.end() && tries >= 0 && tries < last->second.tries)
        refused = last->second.pin;
    m_last.erase(device);
    if (m_last.size() >= MOST_DEVICES)
        m_last.clear();
    if (isAttempt)
        m_last[device] = {{number, line.time, line.thread, std::string(line.function)}, tries};
    return refused;
}

} // namespace tembra::trace
