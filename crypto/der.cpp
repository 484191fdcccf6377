#include "der.h"

#include <algorithm>

namespace tembra::crypto {

namespace {

struct Header {
    std::size_t size;   // of tag and length
    std::size_t length; // of the content
};

// Reads tag and length. The content may reach beyond the end.
std::optional<Header> readHeader(ByteView bytes) {
    if (bytes.size() < 2)
        return std::nullopt;
    const std::uint8_t first = bytes[1];
    if (first < 0x80)
        return Header{2, first};
    const std::size_t count = first & 0x7F;
    if (count == 0 || count > 4 || bytes.size() < 2 + count)
        return std::nullopt;
    std::uint32_t length = 0;
    for (const std::uint8_t digit : bytes.subspan(2, count))
        length = length << 8 | digit;
    const bool minimal = bytes[2] != 0 && length >= 0x80;
    return minimal ? std::optional(Header{2 + count, length}) : std::nullopt;
}

bool isMinimalUnsigned(ByteView integer) {
    if (integer.empty() || integer[0] >= 0x80)
        return false;
    return integer[0] != 0 || integer.size() == 1 || integer[1] >= 0x80;
}

} // namespace

template <typename Accept>
std::optional<ByteView> DerReader::take(std::uint8_t tag, Accept accept) {
    if (!nextIs(tag))
        return std::nullopt;
    const auto header = readHeader(m_rest);
    if (!header || header->length > m_rest.size() - header->size)
        return std::nullopt;
    const ByteView content = m_rest.subspan(header->size, header->length);
    if (!accept(content))
        return std::nullopt;
    m_rest = m_rest.subspan(header->size + header->length);
    return content;
}

std::optional<ByteView> DerReader::element(std::uint8_t tag) {
    return take(tag, [](ByteView) { return true; });
}

std::optional<DerReader> DerReader::nested(std::uint8_t tag) {
    const auto content = element(tag);
    return content ? std::optional(DerReader(*content)) : std::nullopt;
}

std::optional<ByteView> DerReader::unsignedInteger() {
    const auto content = take(der::INTEGER, isMinimalUnsigned);
    return content && content->size() > 1 && content->front() == 0 ? content->subspan(1) : content;
}

bool DerReader::smallInteger(std::uint8_t value) {
    const auto isValue = [&](ByteView content) {
        return content.size() == 1 && content[0] == value;
    };
    return take(der::INTEGER, isValue).has_value();
}

std::optional<ByteView> DerReader::bitString() {
    const auto hasNoUnusedBits = [](ByteView content) {
        return !content.empty() && content.front() == 0;
    };
    const auto content = take(der::BIT_STRING, hasNoUnusedBits);
    return content ? content->subspan(1) : content;
}

bool DerReader::oid(ByteView expected) {
    const auto isExpected = [&](ByteView content) { return std::ranges::equal(content, expected); };
    return take(der::OID, isExpected).has_value();
}

bool DerReader::null() {
    return take(der::NULL_VALUE, [](ByteView content) { return content.empty(); }).has_value();
}

DerWriter &DerWriter::element(std::uint8_t tag, ByteView content) {
    m_out.push_back(tag);
    const std::size_t length = content.size();
    if (length < 0x80) {
        m_out.push_back(static_cast<std::uint8_t>(length));
    } else {
        unsigned count = 1;
        while (length >> (8 * count) != 0)
            ++count;
        m_out.push_back(static_cast<std::uint8_t>(0x80 + count));
        while (count-- != 0)
            m_out.push_back(static_cast<std::uint8_t>(length >> (8 * count)));
    }
    m_out.insert(m_out.end(), content.begin(), content.end());
    return *this;
}

DerWriter &DerWriter::unsignedInteger(ByteView number) {
    const ByteView digits = withoutLeadingZeros(number);
    SecretBytes content;
    content.reserve(digits.size() + 1);
    if (digits.empty() || digits.front() >= 0x80)
        content.push_back(0);
    content.insert(content.end(), digits.begin(), digits.end());
    return element(der::INTEGER, content);
}

DerWriter &DerWriter::bitString(ByteView wholeBytes) {
    SecretBytes content;
    content.reserve(wholeBytes.size() + 1);
    content.push_back(0); // no unused bits
    content.insert(content.end(), wholeBytes.begin(), wholeBytes.end());
    return element(der::BIT_STRING, content);
}

} // namespace tembra::crypto
