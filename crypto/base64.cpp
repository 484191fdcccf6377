#include <array>

#include "pem.h"

namespace tembra::crypto {

namespace {

constexpr std::string_view ALPHABET =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Four characters of which the last may be '='. The bits that padding leaves over must be zero.
bool appendQuartet(const std::array<char, 4> &quartet, SecretBytes &out, bool &ended) {
    std::uint32_t bits = 0;
    unsigned padding = 0;
    for (const char c : quartet) {
        const auto value = ALPHABET.find(c);
        if (c == '=')
            ++padding;
        else if (value == std::string_view::npos || padding != 0)
            return false;
        bits = bits << 6 | static_cast<std::uint32_t>(c == '=' ? 0 : value);
    }
    if (padding > 2 || (bits & ((1U << (8 * padding)) - 1)) != 0)
        return false;
    for (unsigned i = 0; i < 3 - padding; ++i)
        out.push_back(static_cast<std::uint8_t>(bits >> (16 - 8 * i)));
    ended = padding != 0;
    return true;
}

} // namespace

std::string encodeBase64(ByteView data) {
    std::string out;
    out.reserve((data.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < data.size(); i += 3) {
        const auto group = data.subspan(i, std::min<std::size_t>(3, data.size() - i));
        std::uint32_t bits = 0;
        for (std::size_t j = 0; j < 3; ++j)
            bits = bits << 8 | (j < group.size() ? group[j] : 0U);
        for (std::size_t j = 0; j < 4; ++j)
            out += j <= group.size() ? ALPHABET[bits >> (18 - 6 * j) & 0x3F] : '=';
    }
    return out;
}

std::optional<SecretBytes> decodeBase64(std::string_view text) {
    SecretBytes out;
    out.reserve(text.size() / 4 * 3 + 3);
    std::array<char, 4> quartet{};
    std::size_t filled = 0;
    bool ended = false;
    for (const char c : text) {
        if (isSpace(c))
            continue;
        if (ended)
            return std::nullopt;
        quartet[filled++] = c;
        if (filled == quartet.size()) {
            if (!appendQuartet(quartet, out, ended))
                return std::nullopt;
            filled = 0;
        }
    }
    wipe(quartet.data(), quartet.size());
    return filled == 0 ? std::optional(std::move(out)) : std::nullopt;
}

} // namespace tembra::crypto
