#include "envelopes.h"

#include "key_blobs.h"

#include "crypto/sm4.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tembra::token::model {

namespace {

using crypto::ByteView;
using crypto::SecretBytes;

constexpr std::size_t FIELD_SIZE = sizeof(ENVELOPEDKEYBLOB::cbEncryptedPriKey);
constexpr std::size_t RECORD_SIZE = 48; // number of bits, d and filling
constexpr BYTE RECORD_HEAD[] = {0x00, 0x01, 0x00, 0x00};
constexpr BYTE RECORD_FILLING = 0x0C;

bool isZero(ByteView bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](BYTE byte) { return byte == 0; });
}

SecretBytes unwrap(crypto::Sm4Padding padding, const SecretBytes &key, ByteView encrypted) {
    auto plain = crypto::sm4Decrypt(crypto::Sm4Mode::ecb, padding, key, {}, encrypted);
    require(plain.has_value(), SAR_INDATAERR);
    return std::move(*plain);
}

// Some key management centres encrypt a record that contains d instead of d alone.
SecretBytes fromRecord(const SecretBytes &record) {
    const ByteView view(record);
    const ByteView filling = view.last(RECORD_SIZE - sizeof RECORD_HEAD - crypto::SM2_SIZE);
    require(std::equal(std::begin(RECORD_HEAD), std::end(RECORD_HEAD), view.begin()),
            SAR_INDATAERR);
    require(std::all_of(filling.begin(), filling.end(),
                        [](BYTE byte) { return byte == RECORD_FILLING; }),
            SAR_INDATAERR);
    const ByteView d = view.subspan(sizeof RECORD_HEAD, crypto::SM2_SIZE);
    return {d.begin(), d.end()};
}

SecretBytes privateNumber(const SecretBytes &key, ByteView field) {
    if (isZero(field.first(FIELD_SIZE - crypto::SM2_SIZE)))
        return unwrap(crypto::Sm4Padding::none, key, field.last(crypto::SM2_SIZE));
    require(isZero(field.first(FIELD_SIZE - RECORD_SIZE)), SAR_INDATAERR);
    return fromRecord(unwrap(crypto::Sm4Padding::none, key, field.last(RECORD_SIZE)));
}

} // namespace

crypto::Sm2KeyPair openEnvelope(const crypto::Sm2KeyPair &signatureKey,
                                const ENVELOPEDKEYBLOB &envelope) {
    require(envelope.ulSymmAlgID == SGD_SMS4_ECB, SAR_NOTSUPPORTYETERR);
    require(envelope.Version == 1 && envelope.ulBits == 8 * crypto::SM2_SIZE, SAR_INDATAERR);
    require(envelope.ECCCipherBlob.CipherLen == crypto::SM4_KEY_SIZE, SAR_INDATALENERR);
    const auto key = crypto::sm2Decrypt(signatureKey.d, fromBlob(envelope.ECCCipherBlob));
    require(key.has_value(), SAR_INDATAERR);
    crypto::Sm2KeyPair pair{fromBlob(envelope.PubKey),
                            privateNumber(*key, envelope.cbEncryptedPriKey)};
    require(crypto::isConsistent(pair), SAR_INDATAERR);
    return pair;
}

crypto::RsaPrivateKey openEnvelope(const crypto::RsaPrivateKey &signatureKey, ULONG algorithm,
                                   ByteView wrappedKey, ByteView encryptedKey) {
    require(algorithm == SGD_SMS4_ECB, SAR_NOTSUPPORTYETERR);
    require(wrappedKey.size() == signatureKey.n.size(), SAR_INDATALENERR);
    require(!encryptedKey.empty() && encryptedKey.size() % crypto::SM4_BLOCK_SIZE == 0,
            SAR_INDATALENERR);
    const auto key = crypto::rsaDecrypt(signatureKey, wrappedKey);
    require(key.has_value() && key->size() == crypto::SM4_KEY_SIZE, SAR_INDATAERR);
    auto pair = crypto::decodePkcs1(unwrap(crypto::Sm4Padding::pkcs7, *key, encryptedKey));
    require(pair.has_value() && crypto::isConsistent(*pair), SAR_INDATAERR);
    const std::size_t bits = pair->publicKey().bits();
    require((bits == 1024 || bits == 2048) && pair->e.size() <= MAX_RSA_EXPONENT_LEN,
            SAR_INDATAERR);
    return std::move(*pair);
}

} // namespace tembra::token::model
