// The subset of DER (X.690) for keys, signatures and ciphertexts, read strictly.
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
constexpr std::uint8_t NULL_VALUE = 0x05;
constexpr std::uint8_t OID = 0x06;
constexpr std::uint8_t SEQUENCE = 0x30;
constexpr std::uint8_t explicitTag(unsigned number) {
    return static_cast<std::uint8_t>(0xA0 + number);
}
} // namespace der

// A shrinking cursor over bytes that must outlive it. A read takes one whole element of the
// expected kind off the front, or returns empty (or false) and takes nothing. Lengths that are
// indefinite, not minimal or beyond the end are refused.
class DerReader {
public:
    explicit DerReader(ByteView bytes) : m_rest(bytes) {}

    bool atEnd() const { return m_rest.empty(); }
    bool nextIs(std::uint8_t tag) const { return !m_rest.empty() && m_rest.front() == tag; }

    // The content of an element with this one-byte tag.
    std::optional<ByteView> element(std::uint8_t tag);
    // The content of a SEQUENCE or an explicit tag.
    std::optional<DerReader> sequence() { return nested(der::SEQUENCE); }
    std::optional<DerReader> nested(std::uint8_t tag);

    // A non-negative INTEGER without its sign byte; zero is one zero byte.
    std::optional<ByteView> unsignedInteger();
    bool smallInteger(std::uint8_t value); // exactly this value, below 128
    // A BIT STRING of whole bytes.
    std::optional<ByteView> bitString();
    std::optional<ByteView> octetString() { return element(der::OCTET_STRING); }
    std::optional<ByteView> oid() { return element(der::OID); }
    bool oid(ByteView expected); // exactly this OBJECT IDENTIFIER, given as encoded content
    bool null();

private:
    template <typename Accept>
    std::optional<ByteView> take(std::uint8_t tag, Accept accept);

    ByteView m_rest;
};

// Appends elements; a constructed one takes its finished content from another writer. The buffer
// wipes itself because it may hold private keys.
class DerWriter {
public:
    DerWriter &element(std::uint8_t tag, ByteView content);
    DerWriter &nested(std::uint8_t tag, const DerWriter &inner) {
        return element(tag, inner.m_out);
    }
    DerWriter &sequence(const DerWriter &inner) { return nested(der::SEQUENCE, inner); }

    // A big-endian number; leading zeros are dropped, and empty means 0.
    DerWriter &unsignedInteger(ByteView number);
    DerWriter &bitString(ByteView wholeBytes);
    DerWriter &octetString(ByteView content) { return element(der::OCTET_STRING, content); }
    DerWriter &oid(ByteView content) { return element(der::OID, content); }
    DerWriter &null() { return element(der::NULL_VALUE, {}); }

    const SecretBytes &secretBytes() const { return m_out; }
    Bytes bytes() const { return {m_out.begin(), m_out.end()}; }

private:
    SecretBytes m_out;
};

} // namespace tembra::crypto
