#include "pem.h"

#include <algorithm>
#include <gpg-error.h>
#include <new>

#include "gcrypt_handles.h"

namespace tembra::crypto {

namespace {

constexpr std::string_view BEGIN = "-----BEGIN ";
constexpr std::string_view END = "-----END ";
constexpr std::string_view DASHES = "-----";

// The next position at which a line starts with the prefix.
std::size_t findLine(std::string_view text, std::string_view prefix, std::size_t from) {
    std::size_t found = text.find(prefix, from);
    while (found != std::string_view::npos && found != 0 && text[found - 1] != '\n')
        found = text.find(prefix, found + 1);
    return found;
}

bool isSpace(std::uint8_t character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

// Checks padding and length, because gpgrt accepts truncated text.
std::optional<SecretBytes> decodeBase64(std::string_view text) {
    SecretBytes bytes(text.begin(), text.end());
    std::erase_if(bytes, isSpace);
    const auto padding = std::ranges::find(bytes, std::uint8_t{'='});
    const auto paddingSize = static_cast<std::size_t>(bytes.end() - padding);
    if (bytes.size() % 4 != 0 || paddingSize > 2 ||
        std::count(padding, bytes.end(), '=') != bytes.end() - padding)
        return std::nullopt;
    const std::size_t expected = bytes.size() / 4 * 3 - paddingSize;
    const gpgrt_b64state_t state = gpgrt_b64dec_start(nullptr);
    if (state == nullptr)
        throw std::bad_alloc();
    std::size_t length = 0;
    const bool decoded = gpgrt_b64dec_proc(state, bytes.data(), bytes.size(), &length) == 0;
    if (gpgrt_b64dec_finish(state) != 0 || !decoded || length != expected)
        return std::nullopt;
    bytes.resize(length);
    return bytes;
}

} // namespace

std::string encodePem(std::string_view label, ByteView data) {
    Owner<gpgrt_stream_t, gpgrt_fclose> stream(gpgrt_fopenmem(0, "w+"));
    const gpgrt_b64state_t state =
        stream ? gpgrt_b64enc_start(stream.get(), std::string(label).c_str()) : nullptr;
    if (state == nullptr)
        throw std::bad_alloc();
    gpgrt_b64enc_write(state, data.data(), data.size());
    check(gpgrt_b64enc_finish(state), "PEM");
    void *text = nullptr;
    std::size_t length = 0;
    if (gpgrt_fclose_snatch(stream.release(), &text, &length) != 0)
        throw std::bad_alloc();
    const Owner<void *, gpgrt_free> owner(text);
    return {static_cast<const char *>(text), length};
}

std::optional<std::vector<PemBlock>> decodePem(std::string_view text) {
    std::vector<PemBlock> blocks;
    std::size_t begin = findLine(text, BEGIN, 0);
    while (begin != std::string_view::npos) {
        const std::size_t labelBegin = begin + BEGIN.size();
        const std::size_t labelEnd = std::min(text.find(DASHES, labelBegin), text.size());
        const std::string label(text.substr(labelBegin, labelEnd - labelBegin));
        const std::string closing = std::string(END).append(label).append(DASHES);
        const std::size_t end = findLine(text, closing, labelEnd);
        if (label.find('\n') != std::string::npos || end == std::string_view::npos)
            return std::nullopt;
        const std::size_t body = labelEnd + DASHES.size();
        auto data = decodeBase64(text.substr(body, end - body));
        if (!data)
            return std::nullopt;
        blocks.push_back({label, std::move(*data)});
        begin = findLine(text, BEGIN, end + closing.size());
    }
    return blocks;
}

} // namespace tembra::crypto
