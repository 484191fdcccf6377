#include "pem.h"

namespace tembra::crypto {

namespace {

constexpr std::string_view begin = "-----BEGIN ";
constexpr std::string_view end = "-----END ";
constexpr std::string_view dashes = "-----";
constexpr std::size_t lineLength = 64;

// The next place where a line starts with this text.
std::size_t findAtLineStart(std::string_view text, std::string_view what, std::size_t from) {
    std::size_t at = text.find(what, from);
    while (at != std::string_view::npos && at != 0 && text[at - 1] != '\n') {
        at = text.find(what, at + 1);
    }
    return at;
}

} // namespace

std::string encodePem(std::string_view label, ByteView data) {
    std::string out;
    out.append(begin).append(label).append(dashes).append("\n");
    const std::string body = encodeBase64(data);
    for (std::size_t i = 0; i < body.size(); i += lineLength) {
        out.append(body, i, lineLength).append("\n");
    }
    return out.append(end).append(label).append(dashes).append("\n");
}

std::optional<std::vector<PemBlock>> decodePem(std::string_view text) {
    std::vector<PemBlock> blocks;
    std::size_t at = findAtLineStart(text, begin, 0);
    while (at != std::string_view::npos) {
        const std::size_t labelAt = at + begin.size();
        const std::size_t labelEnd = text.find(dashes, labelAt);
        if (labelEnd == std::string_view::npos) {
            return std::nullopt;
        }
        const std::string label(text.substr(labelAt, labelEnd - labelAt));
        const std::string closing = std::string(end) + label + std::string(dashes);
        const std::size_t bodyAt = labelEnd + dashes.size();
        const std::size_t bodyEnd = findAtLineStart(text, closing, bodyAt);
        if (label.find('\n') != std::string::npos || bodyEnd == std::string_view::npos) {
            return std::nullopt;
        }
        auto data = decodeBase64(text.substr(bodyAt, bodyEnd - bodyAt));
        if (!data) {
            return std::nullopt;
        }
        blocks.push_back({label, std::move(*data)});
        at = findAtLineStart(text, begin, bodyEnd + closing.size());
    }
    return blocks;
}

} // namespace tembra::crypto
