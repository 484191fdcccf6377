#include "pem.h"

namespace tembra::crypto {

namespace {

constexpr std::string_view BEGIN = "-----BEGIN ";
constexpr std::string_view END = "-----END ";
constexpr std::string_view DASHES = "-----";
constexpr std::size_t LINE_LENGTH = 64;

// The next place where a line starts with this text.
std::size_t findAtLineStart(std::string_view text, std::string_view what, std::size_t from) {
    std::size_t at = text.find(what, from);
    while (at != std::string_view::npos && at != 0 && text[at - 1] != '\n')
        at = text.find(what, at + 1);
    return at;
}

} // namespace

std::string encodePem(std::string_view label, ByteView data) {
    std::string out;
    out.append(BEGIN).append(label).append(DASHES).append("\n");
    const std::string body = encodeBase64(data);
    for (std::size_t i = 0; i < body.size(); i += LINE_LENGTH)
        out.append(body, i, LINE_LENGTH).append("\n");
    return out.append(END).append(label).append(DASHES).append("\n");
}

std::optional<std::vector<PemBlock>> decodePem(std::string_view text) {
    std::vector<PemBlock> blocks;
    std::size_t at = findAtLineStart(text, BEGIN, 0);
    while (at != std::string_view::npos) {
        const std::size_t labelAt = at + BEGIN.size();
        const std::size_t labelEnd = text.find(DASHES, labelAt);
        if (labelEnd == std::string_view::npos)
            return std::nullopt;
        const std::string label(text.substr(labelAt, labelEnd - labelAt));
        const std::string closing = std::string(END) + label + std::string(DASHES);
        const std::size_t bodyAt = labelEnd + DASHES.size();
        const std::size_t bodyEnd = findAtLineStart(text, closing, bodyAt);
        if (label.find('\n') != std::string::npos || bodyEnd == std::string_view::npos)
            return std::nullopt;
        auto data = decodeBase64(text.substr(bodyAt, bodyEnd - bodyAt));
        if (!data)
            return std::nullopt;
        blocks.push_back({label, std::move(*data)});
        at = findAtLineStart(text, BEGIN, bodyEnd + closing.size());
    }
    return blocks;
}

} // namespace tembra::crypto
