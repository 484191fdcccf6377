#include "import/envelope_steps.h"

#include <climits>
#include <cstdlib>

namespace tembra {

namespace {

constexpr std::size_t BLOB_OVERHEAD = 900; // beyond the encrypted private key
constexpr std::size_t PADDING_MAX = 16;
constexpr int RSA_BLOB_MIN = 20;

// Bytes 16 to 19 of the blob.
bool isModulusLengthKnown(const unsigned char *keyblob) {
    BlobReader in(keyblob, RSA_BLOB_MIN);
    in.take(RSA_BLOB_MIN - 4);
    const std::uint32_t length = in.takeNumber();
    return length == 128 || length == 256;
}

// The container's signature public key, and the symmetric key encrypted to it.
struct Recipient {
    RSAPUBLICKEYBLOB blob = {};
    std::size_t nLen = 0;
    std::size_t eLen = 0; // without leading zero bytes
    HostBuffer wrapped;

    const unsigned char *n() const { return &blob.Modulus[sizeof(blob.Modulus) - nLen]; }
    const unsigned char *e() const {
        return &blob.PublicExponent[sizeof(blob.PublicExponent) - eLen];
    }

    bool wrapFor(const Container *hContainer, const SymmetricKey &key) {
        ULONG length = sizeof(blob);
        if (SKF_ExportPublicKey(hContainer->m_hContainer, 1, reinterpret_cast<BYTE *>(&blob),
                                &length) != SAR_OK ||
            blob.BitLen > 8 * sizeof(blob.Modulus))
            return false;
        nLen = (blob.BitLen + 7) / 8;
        eLen = sizeof(blob.PublicExponent);
        while (eLen > 0 && *e() == 0)
            --eLen;
        HostBuffer encoded;
        return eLen > 0 &&
               OrvelPKICryptoEncodeRSAPubKey(n(), static_cast<int>(nLen), blob.PublicExponent,
                                             sizeof(blob.PublicExponent), encoded.data(),
                                             encoded.length()) == 1 &&
               wrapKey(encoded, ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC, nullptr, key, wrapped) &&
               wrapped.size() == nLen;
    }
};

} // namespace

int envelopeRSA(const Device *hDevice, const Container *hContainer, const unsigned char *keyblob,
                int keybloblen, unsigned char **encblob, int *encbloblen) {
    if (keybloblen < RSA_BLOB_MIN || !isModulusLengthKnown(keyblob))
        return 0;
    SymmetricKey key;
    SecretHostBuffer der;
    if (OrvelPKICryptoRSAPrivKeyToDER(keyblob, keybloblen, der.data(), der.length()) != 1 ||
        der.size() == 0 || !key.draw(hDevice))
        return 0;
    const std::size_t capacity = der.size() + BLOB_OVERHEAD;
    const SecretBlock encrypted(der.size() + PADDING_MAX);
    std::size_t encryptedLen = 0;
    const bool isEncrypted =
        encrypted.data() && encryptOnToken(hDevice, key, true, der.bytes(), der.size(),
                                           encrypted.data(), encrypted.size(), &encryptedLen);
    der.release(); // not to outlive its last use
    Recipient recipient;
    if (!isEncrypted || !recipient.wrapFor(hContainer, key))
        return 0;

    auto *blob =
        capacity <= INT_MAX ? static_cast<unsigned char *>(allocateZeroed(capacity)) : nullptr;
    if (!blob)
        return 0;
    BlobWriter out(blob, capacity);
    const std::size_t payloadLen =
        4 + recipient.nLen + 4 + recipient.eLen + 4 + 4 + recipient.nLen + 4 + encryptedLen;
    writeHeader(out, ORVEL_PKI_ALGORITHM_RSA, payloadLen);
    out.number(static_cast<std::uint32_t>(recipient.nLen));
    out.bytes(recipient.n(), recipient.nLen);
    out.number(static_cast<std::uint32_t>(recipient.eLen));
    out.bytes(recipient.e(), recipient.eLen);
    out.number(static_cast<std::uint32_t>(key.hostAlgo));
    out.number(static_cast<std::uint32_t>(recipient.nLen));
    out.bytes(recipient.wrapped.bytes(), recipient.wrapped.size());
    out.number(static_cast<std::uint32_t>(encryptedLen));
    out.bytes(encrypted.data(), encryptedLen);
    if (!out.ok()) {
        std::free(blob);
        return 0;
    }
    *encblob = blob;
    *encbloblen = static_cast<int>(out.size());
    return 1;
}

} // namespace tembra
