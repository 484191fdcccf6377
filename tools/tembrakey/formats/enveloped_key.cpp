#include "tembrakey/formats/enveloped_key.h"

#include <array>
#include <string_view>

#include "crypto/random.h"
#include "crypto/sm2_encoding.h"
#include "crypto/sm4.h"
#include "tembra_key_prov.h"
#include "tembrakey/io/failure.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

using crypto::Bytes;
using crypto::ByteView;
using crypto::SecretBytes;

// Appends fields; numbers are u32 big-endian.
class BlobWriter {
public:
    BlobWriter &number(std::size_t value) {
        for (int shift = 24; shift >= 0; shift -= 8)
            m_out.push_back(static_cast<std::uint8_t>(value >> shift));
        return *this;
    }
    BlobWriter &bytes(ByteView value) {
        m_out.insert(m_out.end(), value.begin(), value.end());
        return *this;
    }
    BlobWriter &counted(ByteView value) { return number(value.size()).bytes(value); }
    BlobWriter &point(const crypto::Sm2PublicKey &key) {
        m_out.push_back(4);
        return bytes(key.x).bytes(key.y);
    }
    const Bytes &done() const { return m_out; }

private:
    Bytes m_out;
};

template <typename T>
T usable(std::optional<T> made) {
    if (!made)
        throw Failure(ExitCode::usage, tr("A key cannot be used for enveloping"));
    return std::move(*made);
}

SecretBytes randomKey() {
    SecretBytes key(crypto::SM4_KEY_SIZE);
    crypto::fillRandom(key);
    return key;
}

Bytes encryptPrivate(ByteView key, ByteView plain, crypto::Sm4Padding padding) {
    return usable(crypto::sm4Encrypt(crypto::Sm4Mode::ecb, padding, key, {}, plain));
}

SecretBytes laidOut(const SecretBytes &d, Sm2PrivateForm form) {
    if (form == Sm2PrivateForm::plain)
        return d;
    constexpr std::uint8_t padding = 12;
    SecretBytes plain = {0x00, 0x01, 0x00, 0x00}; // 256, the length in bits
    plain.insert(plain.end(), d.begin(), d.end());
    plain.insert(plain.end(), padding, padding);
    return plain;
}

Bytes sm2Payload(const crypto::Sm2KeyPair &pair, const crypto::Sm2PublicKey &container,
                 Sm2PrivateForm form) {
    const SecretBytes key = randomKey();
    const Bytes wrapped = crypto::flattenSm2Ciphertext(usable(crypto::sm2Encrypt(container, key)));
    BlobWriter out;
    out.number(ORVEL_PKI_ECC_CURVE_SM2)
        .point(container)
        .number(ORVEL_PKI_ALGORITHM_SMS4_ECB)
        .counted(wrapped)
        .point(pair.publicKey)
        .counted(encryptPrivate(key, laidOut(pair.d, form), crypto::Sm4Padding::none));
    return out.done();
}

Bytes rsaPayload(const crypto::RsaPrivateKey &pair, const crypto::RsaPublicKey &container) {
    const SecretBytes key = randomKey();
    BlobWriter out;
    out.counted(container.n)
        .counted(container.e)
        .number(ORVEL_PKI_ALGORITHM_SMS4_ECB)
        .counted(usable(crypto::rsaEncrypt(container, key)))
        .counted(encryptPrivate(key, crypto::encodePkcs1(pair), crypto::Sm4Padding::pkcs7));
    return out.done();
}

} // namespace

Bytes envelopeKeyPair(const crypto::PrivateKey &key, const crypto::PublicKey &container,
                      Sm2PrivateForm form) {
    if (key.index() != container.index())
        throw Failure(ExitCode::usage,
                      tr("the key and the key of the container have different algorithms"));
    const auto *rsa = std::get_if<crypto::RsaPrivateKey>(&key);
    const Bytes payload = rsa != nullptr
                              ? rsaPayload(*rsa, std::get<crypto::RsaPublicKey>(container))
                              : sm2Payload(std::get<crypto::Sm2KeyPair>(key),
                                           std::get<crypto::Sm2PublicKey>(container), form);
    constexpr std::array<std::uint8_t, 8> magic = {'S', 'C', 'A', 'E', 'N', 'C', 'K', 'P'};
    BlobWriter blob;
    blob.bytes(magic)
        .number(1)
        .number(rsa != nullptr ? ORVEL_PKI_ALGORITHM_RSA : ORVEL_PKI_ALGORITHM_ECC)
        .counted(payload);
    return blob.done();
}

} // namespace tembra::tool
