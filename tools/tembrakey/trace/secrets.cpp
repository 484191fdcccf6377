#include "tembrakey/trace/secrets.h"

#include <algorithm>
#include <charconv>

namespace tembra::trace {

namespace {

constexpr std::size_t NOWHERE = std::string_view::npos;
constexpr std::string_view PIN =
    "wd = "; // of pwd, oldpwd, newpwd, sopwd; w is rare, so it is found fast
constexpr std::string_view NEXT_PIN = ", const char *newpwd = ";
constexpr std::string_view TRIES = "*pretrynum = ";
constexpr std::string_view DUMP = "[length:";
constexpr std::string_view NULL_TEXT = "(null)"; // a null pointer in the log
constexpr std::string_view HEX_DIGITS = "0123456789ABCDEFabcdef";
constexpr std::size_t SHORTEST_DATA = 8; // hex digits

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != NOWHERE;
}

bool isPinLine(const Line &line) {
    return line.level == Level::information &&
           (line.function == "DeviceVerifyPwd" || line.function == "DeviceChangePwd" ||
            line.function == "DeviceUnlockPwd");
}

// Where the remaining tries begin that a whole PIN line ends with, ", " included. Searches from the
// end, since a PIN may hold any text.
std::size_t findTries(std::string_view message, std::size_t begin) {
    const std::size_t name = message.rfind(TRIES);
    if (name == NOWHERE || name < begin)
        return NOWHERE;
    const std::string_view value = message.substr(name + TRIES.size());
    const bool isNumber =
        !value.empty() && value.find_first_not_of("0123456789abcdefABCDEFx-") == NOWHERE;
    if (!isNumber && value != "(nil)" && value != NULL_TEXT)
        return NOWHERE;
    for (const std::string_view lead : {std::string_view(", int "), std::string_view(", ")})
        if (message.substr(begin, name - begin).ends_with(lead))
            return name - lead.size();
    return NOWHERE;
}

Secret findPins(const Line &line) {
    const std::string_view message = line.message;
    std::size_t begin = message.find(PIN);
    if (begin != NOWHERE && isPinLine(line) &&
        std::count(message.begin(), message.begin() + static_cast<std::ptrdiff_t>(begin), '=') != 2)
        begin = NOWHERE; // not the first PIN of an undamaged line
    if (begin == NOWHERE) {
        const bool isDamaged = isPinLine(line) || (contains(message, TRIES) &&
                                                   line.function != "DeviceGetPwdRetryNum");
        return isDamaged ? Secret{0, message.size(), true} : Secret{};
    }
    begin += PIN.size();
    const std::size_t end = line.complete ? findTries(message, begin) : NOWHERE;
    return {begin, std::min(end, message.size()), end == NOWHERE};
}

bool isPublic(const Line &line, std::string_view name) {
    if (line.function == "GetCertificate")
        return name == "*certblob";
    if (line.function == "GetECCPublicKey")
        return name == "*keyblob" || name == "&ecc.XCoordinate[sizeof(ecc.XCoordinate) - 32]" ||
               name == "&ecc.YCoordinate[sizeof(ecc.YCoordinate) - 32]";
    return line.function == "DeviceExportPublicKey" && name == "keyblob";
}

// A dump reads "name[length:N]: 0123AB". Lines of level verbose have nothing else.
Secret findData(const Line &line) {
    const std::string_view message = line.message;
    const std::size_t length = message.find(DUMP);
    if (length == NOWHERE)
        return line.level == Level::verbose ? Secret{0, message.size(), true} : Secret{};
    std::size_t bytes = 0;
    const char *const end = message.data() + message.size();
    const auto number = std::from_chars(message.data() + length + DUMP.size(), end, bytes);
    const std::size_t begin = static_cast<std::size_t>(number.ptr - message.data()) + 3;
    if (number.ec != std::errc() || message.substr(begin - 3, 3) != "]: ")
        return {length, message.size(), true};
    const bool isLeftOut = begin == message.size() && line.complete;
    const bool isWhole = (message.size() - begin) / 2 == bytes && message.size() % 2 == begin % 2 &&
                         message.find_first_not_of(HEX_DIGITS, begin) == NOWHERE;
    if (isLeftOut || (isWhole && line.complete && line.level == Level::verbose &&
                      isPublic(line, message.substr(0, length))))
        return {};
    return {begin, message.size(), !isWhole};
}

std::string maskedPin(std::string_view pin) {
    return std::string(pin == NULL_TEXT ? NULL_TEXT : MASK_TEXT);
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isLetter(char c) {
    return lower(c) >= 'a' && lower(c) <= 'z';
}

// Behind "pin:", "Password =", "pwd\" :" and the like.
std::size_t findForeignSecret(std::string_view text) {
    std::string small(text);
    std::transform(small.begin(), small.end(), small.begin(), lower);
    for (const std::string_view word : {"pwd", "pin", "passw", "passphrase"}) {
        for (auto found = small.find(word); found != NOWHERE; found = small.find(word, found + 1)) {
            if (word == "pin" && found > 0 && isLetter(small[found - 1]))
                continue; // shopping
            const std::size_t end = found + word.size();
            const std::size_t sign = small.find_first_of(":=", end);
            if (sign == NOWHERE || sign > end + 12)
                continue;
            const std::string_view between = std::string_view(small).substr(end, sign - end);
            if (std::all_of(between.begin(), between.end(), [](char c) {
                    return isLetter(c) || contains("_ \"'", std::string_view(&c, 1));
                }))
                return sign + 1;
        }
    }
    return NOWHERE;
}

void maskHex(std::string_view text, std::string &out) {
    const bool isRestOfDump = text.find_first_not_of("0123456789ABCDEFabcdef ]:") == NOWHERE;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t end = std::min(text.find_first_not_of(HEX_DIGITS, i), text.size());
        const std::string_view before = text.substr(0, i);
        const bool isNumber = before.ends_with("0x") && end - i <= 16;
        const bool isData = end - i >= SHORTEST_DATA || isRestOfDump || before.ends_with("]: ");
        if (end > i && isData && !isNumber)
            out += MASK_TEXT;
        else
            out += text.substr(i, end - i);
        if (end < text.size())
            out += text[end];
        i = end + 1;
    }
}

} // namespace

Secret findSecret(const Line &line, Mask mask) {
    const Secret pins = findPins(line);
    return mask == Mask::pins || pins.begin != NOWHERE ? pins : findData(line);
}

std::string maskedSecret(const Line &line, const Secret &secret) {
    const std::string_view text = line.message.substr(secret.begin, secret.end - secret.begin);
    const std::size_t next = text.find(NEXT_PIN);
    if (next == NOWHERE || secret.isOpen || line.function == "DeviceVerifyPwd")
        return maskedPin(text);
    return maskedPin(text.substr(0, next)) + std::string(NEXT_PIN) +
           maskedPin(text.substr(next + NEXT_PIN.size()));
}

bool looksLikePinLine(std::string_view text) {
    return contains(text, PIN) || contains(text, "pretrynum") || contains(text, "Pwd]");
}

std::string maskForeign(std::string_view text, Mask mask) {
    const std::size_t secret = findForeignSecret(text);
    const std::string_view visible = text.substr(0, secret);
    std::string masked;
    if (mask == Mask::pinsAndData)
        maskHex(visible, masked);
    else
        masked = visible;
    return secret == NOWHERE ? masked : masked.append(MASK_TEXT);
}

} // namespace tembra::trace
