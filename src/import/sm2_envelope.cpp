#include "import/envelope_steps.h"
#include "import/sm2_cipher.h"
#include "provider/settings.h"

#include <cstdlib>
#include <cstring>

namespace tembra {

namespace {

constexpr std::size_t BLOB_CAPACITY = 900;
constexpr std::size_t WRAPPED_LEN = SYMMETRIC_KEY_LEN + SM2_CIPHER_OVERHEAD; // 113
constexpr std::size_t SCALAR_LEN = 32;

// d in the form that the token requires: bare, or preceded by its size in bits (little-endian) and
// followed by twelve bytes of padding.
struct ScalarText {
    SecretArray<48> bytes;
    std::size_t length;

    explicit ScalarText(const unsigned char *d) : length(SCALAR_LEN) {
        unsigned char *begin = bytes.data();
        if (g_supportGDKMSM2Import) {
            static const unsigned char bits[4] = {0x00, 0x01, 0x00, 0x00};
            std::memset(begin, 0x0C, bytes.size());
            std::memcpy(begin, bits, sizeof(bits));
            begin += sizeof(bits);
            length = bytes.size();
        }
        std::memcpy(begin, d, SCALAR_LEN);
    }
};

struct PlainKeyPair {
    HostBuffer x;
    HostBuffer y;
    SecretHostBuffer d;

    bool decode(const unsigned char *keyblob, int keybloblen) {
        int curve = 0;
        return OrvelPKICryptoDecodeECCKeyPair(keyblob, keybloblen, &curve, x.data(), x.length(),
                                              y.data(), y.length(), d.data(), d.length()) == 1 &&
               curve == ORVEL_PKI_ECC_CURVE_SM2 && x.size() == SM2_COORDINATE_LEN &&
               y.size() == SM2_COORDINATE_LEN && d.size() == SCALAR_LEN;
    }
};

struct EncryptedScalar {
    SecretArray<64> bytes;
    std::size_t length = 0;

    bool make(const Device *hDevice, const SymmetricKey &key, const unsigned char *d) {
        const ScalarText scalar(d);
        return encryptOnToken(hDevice, key, false, scalar.bytes.data(), scalar.length, bytes.data(),
                              bytes.size(), &length);
    }
};

// The container's signature public key, and the symmetric key encrypted to it.
struct Recipient {
    ECCPUBLICKEYBLOB blob = {};
    HostBuffer wrapped;

    const unsigned char *x() const { return &blob.XCoordinate[sizeof(blob.XCoordinate) - 32]; }
    const unsigned char *y() const { return &blob.YCoordinate[sizeof(blob.YCoordinate) - 32]; }

    bool wrapFor(const Container *hContainer, const SymmetricKey &key) {
        ULONG length = sizeof(blob);
        if (SKF_ExportPublicKey(hContainer->m_hContainer, 1, reinterpret_cast<BYTE *>(&blob),
                                &length) != SAR_OK ||
            blob.BitLen != 256)
            return false;
        HostBuffer encoded;
        const int hash = ORVEL_PKI_ALGORITHM_SM3;
        return OrvelPKICryptoEncodeECCPubKey(ORVEL_PKI_ECC_CURVE_SM2, x(), SM2_COORDINATE_LEN, y(),
                                             SM2_COORDINATE_LEN, encoded.data(),
                                             encoded.length()) == 1 &&
               wrapKey(encoded, ORVEL_PKI_ALGORITHM_SM2_ENC, &hash, key, wrapped) &&
               wrapped.size() == WRAPPED_LEN;
    }
};

void writePoint(BlobWriter &out, const unsigned char *x, const unsigned char *y) {
    out.byte(POINT_UNCOMPRESSED);
    out.bytes(x, SM2_COORDINATE_LEN);
    out.bytes(y, SM2_COORDINATE_LEN);
}

} // namespace

int envelopeSM2(const Device *hDevice, const Container *hContainer, const unsigned char *keyblob,
                int keybloblen, unsigned char **encblob, int *encbloblen) {
    SymmetricKey key;
    PlainKeyPair pair;
    if (!pair.decode(keyblob, keybloblen) || !key.draw(hDevice))
        return 0;
    EncryptedScalar encrypted;
    const bool isEncrypted = encrypted.make(hDevice, key, pair.d.bytes());
    pair.d.release(); // not to outlive its last use
    if (!isEncrypted)
        return 0;
    Recipient recipient;
    if (!recipient.wrapFor(hContainer, key))
        return 0;

    auto *blob = static_cast<unsigned char *>(allocateZeroed(BLOB_CAPACITY));
    if (!blob)
        return 0;
    BlobWriter out(blob, BLOB_CAPACITY);
    const std::size_t payloadLen =
        4 + SM2_POINT_LEN + 4 + 4 + WRAPPED_LEN + SM2_POINT_LEN + 4 + encrypted.length;
    writeHeader(out, ORVEL_PKI_ALGORITHM_ECC, payloadLen);
    out.number(ORVEL_PKI_ECC_CURVE_SM2);
    writePoint(out, recipient.x(), recipient.y());
    out.number(static_cast<std::uint32_t>(key.hostAlgo));
    out.number(WRAPPED_LEN);
    out.bytes(recipient.wrapped.bytes(), recipient.wrapped.size());
    writePoint(out, pair.x.bytes(), pair.y.bytes());
    out.number(static_cast<std::uint32_t>(encrypted.length));
    out.bytes(encrypted.bytes.data(), encrypted.length);
    if (!out.ok()) {
        std::free(blob);
        return 0;
    }
    *encblob = blob;
    *encbloblen = static_cast<int>(out.size());
    return 1;
}

} // namespace tembra
