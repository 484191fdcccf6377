#include "tembrakey/formats/certificate.h"

#include <algorithm>

#include "crypto/der.h"
#include "crypto/hex.h"

namespace tembra::tool {

namespace {

using crypto::Bytes;
using crypto::ByteView;
using crypto::DerReader;

struct AttributeName {
    Bytes oid;
    const char *name;
};

const AttributeName ATTRIBUTE_NAMES[] = {
    {{0x55, 0x04, 0x03}, "CN"}, {{0x55, 0x04, 0x05}, "serialNumber"},
    {{0x55, 0x04, 0x06}, "C"},  {{0x55, 0x04, 0x07}, "L"},
    {{0x55, 0x04, 0x08}, "ST"}, {{0x55, 0x04, 0x0A}, "O"},
    {{0x55, 0x04, 0x0B}, "OU"}, {{0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x09, 0x01}, "E"},
};

std::string dotted(ByteView oid) {
    std::string text;
    std::uint64_t number = 0;
    for (const std::uint8_t byte : oid) {
        number = number << 7 | (byte & 0x7F);
        if (byte & 0x80)
            continue;
        if (text.empty())
            text = std::to_string(std::min<std::uint64_t>(number / 40, 2)) + "." +
                   std::to_string(number < 80 ? number % 40 : number - 80);
        else
            text += "." + std::to_string(number);
        number = 0;
    }
    return text;
}

std::string nameOf(ByteView oid) {
    for (const AttributeName &one : ATTRIBUTE_NAMES)
        if (std::equal(oid.begin(), oid.end(), one.oid.begin(), one.oid.end()))
            return one.name;
    return dotted(oid);
}

void appendUtf8(std::string &text, unsigned code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | code >> 12);
        text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
}

std::string fromBmp(ByteView bytes) {
    std::string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        appendUtf8(text, static_cast<unsigned>(bytes[i] << 8 | bytes[i + 1]));
    return text;
}

constexpr std::uint8_t SET = 0x31;
constexpr std::uint8_t BMP_STRING = 0x1E;
constexpr std::uint8_t TEXT_TAGS[] = {0x0C /* UTF8 */, 0x13 /* Printable */, 0x14 /* Teletex */,
                                      0x16 /* IA5 */, 0x1A /* Visible */};

std::string valueOf(DerReader &attribute) {
    if (const auto bmp = attribute.element(BMP_STRING))
        return fromBmp(*bmp);
    for (const std::uint8_t tag : TEXT_TAGS) {
        if (const auto bytes = attribute.element(tag)) {
            std::string text(bytes->begin(), bytes->end()); // control characters stay off terminals
            std::replace_if(
                text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; },
                '?');
            return text;
        }
    }
    return "?";
}

std::optional<std::string> nameText(DerReader name) {
    std::string text;
    while (!name.atEnd()) {
        auto relative = name.nested(SET);
        auto attribute = relative ? relative->sequence() : std::nullopt;
        const auto oid = attribute ? attribute->oid() : std::nullopt;
        if (!oid)
            return std::nullopt;
        text += (text.empty() ? "" : ", ") + nameOf(*oid) + "=" + valueOf(*attribute);
    }
    return text;
}

// What a certificate says, from its subject on.
std::optional<DerReader> fromSubject(ByteView der) {
    auto certificate = DerReader(der).sequence();
    auto body = certificate ? certificate->sequence() : std::nullopt;
    if (!body)
        return std::nullopt;
    body->element(crypto::der::explicitTag(0)); // version, may be absent
    if (!body->unsignedInteger())               // serial number; some are negative
        body->element(crypto::der::INTEGER);
    if (!body->sequence() || !body->sequence() || !body->sequence()) // algorithm, issuer, validity
        return std::nullopt;
    return body;
}

} // namespace

std::optional<std::string> certificateSubject(ByteView der) {
    auto body = fromSubject(der);
    const auto subject = body ? body->sequence() : std::nullopt;
    return subject ? nameText(*subject) : std::nullopt;
}

std::optional<crypto::PublicKey> certificatePublicKey(ByteView der) {
    auto body = fromSubject(der);
    if (!body || !body->sequence())
        return std::nullopt;
    const auto info = body->element(crypto::der::SEQUENCE);
    return info ? crypto::decodePublicKey(
                      crypto::DerWriter().element(crypto::der::SEQUENCE, *info).bytes())
                : std::nullopt;
}

bool isDerSequence(ByteView bytes) {
    DerReader reader(bytes);
    return reader.sequence() && reader.atEnd();
}

} // namespace tembra::tool
