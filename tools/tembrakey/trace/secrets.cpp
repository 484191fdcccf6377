#include "tembrakey/trace/secrets.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace tembra::trace {

namespace {

constexpr std::string_view NEXT_PIN = ", const char *newpwd = ";
constexpr std::string_view null = "(null)";

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isLetter(char c) {
    return lower(c) >= 'a' && lower(c) <= 'z';
}

bool isHex(char c) {
    return (c >= '0' && c <= '9') || (lower(c) >= 'a' && lower(c) <= 'f');
}

std::size_t skip(std::string_view text, std::size_t at, bool (*is)(char)) {
    while (at < text.size() && is(text[at]))
        ++at;
    return at;
}

// Offset behind "= " when the text says so at `at`, blanks before it allowed.
std::size_t behindEquals(std::string_view text, std::size_t at) {
    at = skip(text, at, [](char c) { return c == ' '; });
    if (at >= text.size() || text[at] != '=' || text.substr(at, 2) == "==")
        return NOWHERE;
    return at + 1 < text.size() && text[at + 1] == ' ' ? at + 2 : at + 1;
}

// The letter w is rare in a trace log, which makes this search fast.
std::size_t findPinFrom(std::string_view text, char w) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const void *found = std::memchr(text.data() + at, w, text.size() - at);
        if (found == nullptr)
            return NOWHERE;
        at = static_cast<std::size_t>(static_cast<const char *>(found) - text.data());
        if (at == 0 || lower(text[at - 1]) != 'p' || at + 1 >= text.size() ||
            lower(text[at + 1]) != 'd')
            continue;
        if (const std::size_t pin = behindEquals(text, at + 2); pin != NOWHERE)
            return pin;
    }
    return NOWHERE;
}

} // namespace

std::size_t findPin(std::string_view text) {
    return std::min(findPinFrom(text, 'w'), findPinFrom(text, 'W'));
}

bool writesPins(std::string_view function) {
    return function == "DeviceVerifyPwd" || writesTwoPins(function);
}

bool writesTwoPins(std::string_view function) {
    return function == "DeviceChangePwd" || function == "DeviceUnlockPwd";
}

std::size_t findPinTail(std::string_view text, std::size_t from) {
    constexpr std::string_view name = "*pretrynum = ";
    const std::size_t at = text.rfind(name);
    if (at == NOWHERE || at < from)
        return NOWHERE;
    const std::string_view value = text.substr(at + name.size());
    const bool isValue = !value.empty() && value.find_first_not_of("0123456789abcdefABCDEFx-") ==
                                               std::string_view::npos;
    if (!isValue && value != "(nil)" && value != null)
        return NOWHERE;
    for (const std::string_view lead : {std::string_view(", int "), std::string_view(", ")})
        if (at >= from + lead.size() && text.substr(0, at).ends_with(lead))
            return at - lead.size();
    return NOWHERE;
}

std::string maskPins(std::string_view stretch, bool two) {
    const std::size_t next = two ? stretch.find(NEXT_PIN) : NOWHERE;
    if (next == NOWHERE)
        return std::string(stretch == null ? null : MASK_TEXT);
    std::string masked(stretch.substr(0, next) == null ? null : MASK_TEXT);
    masked += NEXT_PIN;
    masked += stretch.substr(next + NEXT_PIN.size()) == null ? null : MASK_TEXT;
    return masked;
}

Dump findDump(std::string_view message) {
    constexpr std::string_view key = "[length:";
    const std::size_t name = message.find(key);
    if (name == NOWHERE)
        return {};
    const char *const end = message.data() + message.size();
    std::int64_t length = 0;
    const auto number = std::from_chars(message.data() + name + key.size(), end, length);
    const std::size_t behind = static_cast<std::size_t>(number.ptr - message.data());
    if (number.ec != std::errc() || message.substr(behind, 3) != "]: ")
        return {};
    const std::size_t begin = behind + 3;
    const std::size_t stop = skip(message, begin, isHex);
    const bool whole = length >= 0 && stop - begin == 2 * static_cast<std::uint64_t>(length);
    return {name, begin, stop, whole};
}

bool isPublicDump(std::string_view function, std::string_view name) {
    struct Row {
        std::string_view function, name;
    };
    static constexpr Row rows[] = {
        {"GetCertificate", "*certblob"},
        {"GetECCPublicKey", "&ecc.XCoordinate[sizeof(ecc.XCoordinate) - 32]"},
        {"GetECCPublicKey", "&ecc.YCoordinate[sizeof(ecc.YCoordinate) - 32]"},
        {"GetECCPublicKey", "*keyblob"},
        {"DeviceExportPublicKey", "keyblob"},
    };
    return std::any_of(std::begin(rows), std::end(rows), [&](const Row &row) {
        return row.function == function && row.name == name;
    });
}

std::size_t findForeignSecret(std::string_view text) {
    std::string small(text);
    std::transform(small.begin(), small.end(), small.begin(), lower);
    for (const std::string_view word : {"pwd", "pin", "passw", "passphrase"}) {
        for (auto at = small.find(word); at != small.npos; at = small.find(word, at + 1)) {
            if (word == "pin" && at > 0 && isLetter(small[at - 1]))
                continue;
            std::size_t end = at + word.size();
            for (const std::size_t most = end + 12; end < small.size() && end < most; ++end)
                if (!isLetter(small[end]) && small[end] != '_' && small[end] != ' ' &&
                    small[end] != '"' && small[end] != '\'')
                    break;
            if (end < small.size() && (small[end] == ':' || small[end] == '='))
                return end + 1;
        }
    }
    return NOWHERE;
}

void maskHex(std::string_view text, std::string &out) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = skip(text, at, isHex);
        if (end == at) {
            out += text[at++];
            continue;
        }
        const std::string_view before = text.substr(0, at);
        const bool isNumber = before.ends_with("0x") && end - at <= 16;
        if (!isNumber && (end - at >= 8 || before.ends_with("]: ")))
            out += MASK_TEXT;
        else
            out += text.substr(at, end - at);
        at = end;
    }
}

} // namespace tembra::trace
