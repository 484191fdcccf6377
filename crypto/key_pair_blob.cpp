#include "crypto/key_pair_blob.h"

#include <algorithm>
#include <string_view>

namespace tembra::crypto {

namespace {

constexpr std::string_view MAGIC = "_KEYPAIR";
constexpr std::uint32_t ALGORITHM_RSA = 1;
constexpr std::uint32_t ALGORITHM_ECC = 4;
constexpr std::uint32_t CURVE_SM2 = 7;

// A shrinking cursor. After a read beyond the end, finished() is false.
class Cursor {
public:
    explicit Cursor(ByteView bytes) : m_rest(bytes) {}

    ByteView take(std::size_t count) {
        if (count > m_rest.size()) {
            m_good = false;
            return {};
        }
        const ByteView taken = m_rest.first(count);
        m_rest = m_rest.subspan(count);
        return taken;
    }
    std::uint32_t number() {
        std::uint32_t value = 0;
        for (const std::uint8_t digit : take(4))
            value = value << 8 | digit;
        return value;
    }
    // A length and as many bytes, without leading zeros.
    ByteView prefixed() {
        const ByteView field = take(number());
        m_good = m_good && !field.empty() && field.front() != 0;
        return field;
    }
    bool finished() const { return m_good && m_rest.empty(); }

private:
    ByteView m_rest;
    bool m_good = true;
};

class Writer {
public:
    void raw(ByteView bytes) { m_out.insert(m_out.end(), bytes.begin(), bytes.end()); }
    void number(std::size_t value) {
        for (const int shift : {24, 16, 8, 0})
            m_out.push_back(static_cast<std::uint8_t>(value >> shift));
    }
    void prefixed(ByteView field) {
        number(field.size());
        raw(field);
    }
    void start(std::uint32_t algorithm) {
        m_out.insert(m_out.end(), MAGIC.begin(), MAGIC.end());
        number(algorithm);
    }
    SecretBytes take() { return std::move(m_out); }

private:
    SecretBytes m_out;
};

bool isModulusSize(std::size_t bytes) {
    return bytes == 128 || bytes == 256;
}

SecretBytes encode(const RsaPrivateKey &key) {
    Writer writer;
    if (!isModulusSize(key.n.size()) || key.publicKey().bits() != key.n.size() * 8)
        return {};
    writer.start(ALGORITHM_RSA);
    writer.number(key.n.size() * 8);
    writer.prefixed(key.n);
    writer.prefixed(key.e);
    for (const auto field : RSA_SECRET_NUMBERS)
        writer.prefixed(key.*field);
    return writer.take();
}

SecretBytes encode(const Sm2KeyPair &key) {
    Writer writer;
    writer.start(ALGORITHM_ECC);
    writer.number(CURVE_SM2);
    writer.number(SM2_SIZE);
    writer.raw(key.publicKey.x);
    writer.raw(key.publicKey.y);
    writer.raw(key.d);
    return writer.take();
}

std::optional<PrivateKey> decodeRsa(Cursor cursor) {
    RsaPrivateKey key;
    const std::uint32_t bits = cursor.number();
    const ByteView n = cursor.prefixed();
    const ByteView e = cursor.prefixed();
    key.n.assign(n.begin(), n.end());
    key.e.assign(e.begin(), e.end());
    for (const auto field : RSA_SECRET_NUMBERS) {
        const ByteView value = cursor.prefixed();
        (key.*field).assign(value.begin(), value.end());
    }
    if (!cursor.finished() || !isModulusSize(key.n.size()) || bits != key.n.size() * 8 ||
        key.publicKey().bits() != bits || !isConsistent(key))
        return std::nullopt;
    return key;
}

std::optional<PrivateKey> decodeEcc(Cursor cursor) {
    if (cursor.number() != CURVE_SM2 || cursor.number() != SM2_SIZE)
        return std::nullopt;
    Sm2KeyPair pair;
    std::ranges::copy(cursor.take(SM2_SIZE), pair.publicKey.x.begin());
    std::ranges::copy(cursor.take(SM2_SIZE), pair.publicKey.y.begin());
    const ByteView d = cursor.take(SM2_SIZE);
    pair.d.assign(d.begin(), d.end());
    if (!cursor.finished() || !isConsistent(pair))
        return std::nullopt;
    return pair;
}

} // namespace

SecretBytes encodeKeyPairBlob(const PrivateKey &key) {
    return std::visit([](const auto &one) { return encode(one); }, key);
}

std::optional<PrivateKey> decodeKeyPairBlob(ByteView blob) {
    Cursor cursor(blob);
    if (!std::ranges::equal(cursor.take(MAGIC.size()), MAGIC))
        return std::nullopt;
    switch (cursor.number()) {
    case ALGORITHM_RSA: return decodeRsa(cursor);
    case ALGORITHM_ECC: return decodeEcc(cursor);
    default: return std::nullopt;
    }
}

} // namespace tembra::crypto
