// As much of DER (X.690) as keys, signatures and ciphertexts need, read strictly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "bytes.h"
#include "secret.h"

namespace tembra::crypto {

namespace der {
constexpr std::uint8_t INTEGER = 0x02;
constexpr std::uint8_t BIT_STRING = 0x03;
constexpr std::uint8_t OCTET_STRING = 0x04;
constexpr std::uint8_t null = 0x05;
constexpr std::uint8_t OID = 0x06;
constexpr std::uint8_t SEQUENCE = 0x30;
constexpr std::uint8_t explicitTag(unsigned number) {
    return static_cast<std::uint8_t>(0xA0 + number);
}
} // namespace der

// A cursor that only shrinks over bytes that must outlive it. A read either takes one whole element
// of the expected kind off the front, or answers empty and leaves the cursor where it was.
// Lengths that are not minimal or reach beyond the end, and indefinite lengths, are refused.
class DerReader {
public:
    explicit DerReader(ByteView bytes) : m_rest(bytes) {}

    bool atEnd() const { return m_rest.empty(); }
    bool nextIs(std::uint8_t tag) const { return !m_rest.empty() && m_rest.front() == tag; }

    // The content of an element with this one-byte tag.
    std::optional<ByteView> element(std::uint8_t tag);
    // The inside of a SEQUENCE or an explicit tag.
    std::optional<DerReader> sequence() { return nested(der::SEQUENCE); }
    std::optional<DerReader> nested(std::uint8_t tag);

    // A non-negative, minimally encoded INTEGER without its sign byte; zero comes out as one zero
    // byte.
    std::optional<ByteView> unsignedInteger();
    // True when the next element is this small INTEGER, which is then taken.
    bool smallInteger(std::uint8_t value);
    // A BIT STRING of whole bytes.
    std::optional<ByteView> bitString();
    std::optional<ByteView> octetString() { return element(der::OCTET_STRING); }
    std::optional<ByteView> oid() { return element(der::OID); }
    // True when the next element is this OBJECT IDENTIFIER (encoded content), which is then taken.
    bool oid(ByteView expected);
    bool null();

private:
    ByteView m_rest;
};

// Writes elements one after another; a constructed one takes the finished inner writer. The buffer
// wipes itself, for private keys pass through here.
class DerWriter {
public:
    DerWriter &element(std::uint8_t tag, ByteView content);
    DerWriter &nested(std::uint8_t tag, const DerWriter &inner) {
        return element(tag, inner.m_out);
    }
    DerWriter &sequence(const DerWriter &inner) { return nested(der::SEQUENCE, inner); }

    // The big-endian number, minimally encoded whatever zeros it leads with; empty means 0.
    DerWriter &unsignedInteger(ByteView number);
    DerWriter &bitString(ByteView wholeBytes);
    DerWriter &octetString(ByteView content) { return element(der::OCTET_STRING, content); }
    DerWriter &oid(ByteView content) { return element(der::OID, content); }
    DerWriter &null() { return element(der::null, {}); }

    const SecretBytes &secretBytes() const { return m_out; }
    Bytes bytes() const { return {m_out.begin(), m_out.end()}; }

private:
    SecretBytes m_out;
};

} // namespace tembra::crypto
