#include "import/blob.h"
#include "import/host_buffer.h"
#include "import/key_import.h"
#include "import/sm2_cipher.h"
#include "log/trace.h"
#include "platform/memory.h"
#include "provider/keypair_table.h"
#include "provider/outcome.h"
#include "provider/public_key_cache.h"
#include "provider/public_key_reader.h"

#include <cstring>

namespace tembra {

namespace {

constexpr std::size_t ENVELOPE_BLOCK_LEN = 388; // with 16 bytes of Cipher for a symmetric key
constexpr std::size_t ENVELOPE_HEAD_LEN =
    offsetof(ENVELOPEDKEYBLOB, ECCCipherBlob) + offsetof(ECCCIPHERBLOB, Cipher);
static_assert(ENVELOPE_HEAD_LEN == 372);

struct Parsed {
    int symmetricAlgorithm;        // SKF identifier
    const unsigned char *cipher;   // the symmetric key under the signature key, flat
    std::size_t cipherLen;         // at least 97
    const unsigned char *publicXY; // of the key pair to be imported
    const unsigned char *privateKey;
    std::size_t privateKeyLen; // 32 to 64
};

// Each step returns the message of the check that failed, or null.

const char *checkSignatureKey(BlobReader &in, const Container *hContainer, const char *function) {
    if (!in.has(4))
        return "rvkeyblobLen - pos < 4";
    if (in.takeNumber() != ORVEL_PKI_ECC_CURVE_SM2)
        return "rvcurve != ORVEL_PKI_ECC_CURVE_SM2";
    if (!in.has(SM2_POINT_LEN))
        return "keyblobLen - pos < 65";
    if (in.takeByte() != POINT_UNCOMPRESSED)
        return "keyblob[pos] != 4";

    if (!hContainer->m_signPubKey)
        return "hContainer->m_signPubKey == 0";
    HostBuffer x;
    HostBuffer y;
    int curve = 0;
    const int result =
        OrvelPKICryptoDecodeECCPubKey(hContainer->m_signPubKey, hContainer->m_signPubKeyLen, &curve,
                                      x.data(), x.length(), y.data(), y.length());
    if (result != 1) {
        TEMBRA_TRACE(TraceLevel::error, function, "OrvelPKICryptoDecodeECCPubKey fail, error = %d",
                     result);
        return ALREADY_LOGGED;
    }
    const unsigned char *blobX = in.take(SM2_COORDINATE_LEN);
    const unsigned char *blobY = in.take(SM2_COORDINATE_LEN);
    if (x.size() < SM2_COORDINATE_LEN || std::memcmp(x.bytes(), blobX, SM2_COORDINATE_LEN) != 0)
        return "memcmp(x, &keyblob[pos], 32) != 0";
    if (y.size() < SM2_COORDINATE_LEN || std::memcmp(y.bytes(), blobY, SM2_COORDINATE_LEN) != 0)
        return "memcmp(y, &keyblob[pos], 32) != 0";
    return nullptr;
}

const char *readSymmetricKey(BlobReader &in, Parsed &parsed) {
    if (!in.has(4))
        return "keyblobLen - pos < 4";
    parsed.symmetricAlgorithm = envelopeAlgorithm(in.takeNumber());
    if (!in.has(8))
        return "keyblobLen - pos < 8";
    if (parsed.symmetricAlgorithm == -1)
        return "an unsupportd ECC algoritom";
    parsed.cipherLen = in.takeNumber();
    if (parsed.cipherLen < SM2_CIPHER_OVERHEAD)
        return "encKeyLen < 97";
    if (!in.has(parsed.cipherLen))
        return "keyblobLen - pos < encKeyLen";
    parsed.cipher = in.take(parsed.cipherLen);
    return parsed.cipher[0] == POINT_UNCOMPRESSED ? nullptr : "keyblob[pos] != 4";
}

const char *readKeyPair(BlobReader &in, Parsed &parsed) {
    if (!in.has(SM2_POINT_LEN))
        return "keyblobLen - pos < 65";
    if (in.takeByte() != POINT_UNCOMPRESSED)
        return "rvkeyblob[pos] != 4";
    parsed.publicXY = in.take(SM2_POINT_LEN - 1);
    if (!in.has(4))
        return "keyblobLen - pos < 4";
    parsed.privateKeyLen = in.takeNumber();
    if (in.remaining() != parsed.privateKeyLen)
        return "keyblobLen - pos != len";
    if (parsed.privateKeyLen < 32 ||
        parsed.privateKeyLen > sizeof(ENVELOPEDKEYBLOB::cbEncryptedPriKey))
        return "len < 32 || len>64";
    parsed.privateKey = in.take(parsed.privateKeyLen);
    return nullptr;
}

void fillEnvelope(ENVELOPEDKEYBLOB *blob, const Parsed &parsed) {
    blob->Version = 1;
    blob->ulSymmAlgID = static_cast<ULONG>(parsed.symmetricAlgorithm);
    blob->ulBits = 256;
    std::memcpy(blob->cbEncryptedPriKey + sizeof(blob->cbEncryptedPriKey) - parsed.privateKeyLen,
                parsed.privateKey, parsed.privateKeyLen);
    blob->PubKey.BitLen = 256;
    putCoordinate(blob->PubKey.XCoordinate, parsed.publicXY);
    putCoordinate(blob->PubKey.YCoordinate, parsed.publicXY + SM2_COORDINATE_LEN);
    fillCipherBlob(&blob->ECCCipherBlob, parsed.cipher, parsed.cipherLen);
}

// This vendor's tokens return any of these if the user is not logged in.
bool meansNotLoggedIn(ULONG rv) {
    return rv == 0x0A00000D || rv == 0x0A00001E || rv == SAR_USER_NOT_LOGGED_IN ||
           rv == 0x0B000033 || rv == 0x00000001;
}

int importIntoToken(const Container *hContainer, const unsigned char *block, const char *function) {
    auto *blob = reinterpret_cast<ENVELOPEDKEYBLOB *>(const_cast<unsigned char *>(block));
    const ULONG rv = SKF_ImportECCKeyPair(hContainer->m_hContainer, blob);
    if (meansNotLoggedIn(rv))
        return TEMBRA_NOT_LOGGED_IN;
    if (rv == SAR_OK)
        return TEMBRA_SUCCESS;
    TEMBRA_TRACE(TraceLevel::error, function, "SKF_ImportECCKeyPair fail, error = 0x%08X", rv);
    return TEMBRA_FAILURE;
}

int refreshPublicKey(Container *hContainer, const char *function) {
    unsigned char *key = nullptr;
    int keyLen = 0;
    const int result = GetECCPublicKey(hContainer->m_hContainer, 0, &key, &keyLen);
    if (result != 1) {
        TEMBRA_TRACE(TraceLevel::error, function, "GetECCPublicKey fail, error = %d", result);
        return TEMBRA_FAILURE;
    }
    replacePublicKey(hContainer, false, key, keyLen);
    return TEMBRA_SUCCESS;
}

} // namespace

int importSM2KeyPair(const Device *hDevice, Container *hContainer, const unsigned char *keyblob,
                     int keyblobLen) {
    BlobReader in(keyblob, static_cast<std::size_t>(keyblobLen));
    Parsed parsed = {};
    if (const char *message = checkSignatureKey(in, hContainer, __func__))
        return fail(message, __func__);
    if (const char *message = readSymmetricKey(in, parsed))
        return fail(message, __func__);

    const std::size_t needed = ENVELOPE_HEAD_LEN + parsed.cipherLen - SM2_CIPHER_OVERHEAD;
    const SecretBlock block(needed > ENVELOPE_BLOCK_LEN ? needed : ENVELOPE_BLOCK_LEN);
    if (!block.data())
        return fail("sm2Cipher == 0", __func__);
    TRACE_HEX("keyblob[length:%d]: %s", keyblob, keyblobLen);
    if (const char *message = readKeyPair(in, parsed))
        return fail(message, __func__);
    fillEnvelope(reinterpret_cast<ENVELOPEDKEYBLOB *>(block.data()), parsed);
    TRACE_HEX("sm2Cipher[length:%d]: %s", block.data(), static_cast<int>(block.size()));
    if (isTableFull(hDevice))
        return fail(TABLE_FULL, "DeviceImportKeypair");
    const int imported = importIntoToken(hContainer, block.data(), __func__);
    return imported == TEMBRA_SUCCESS ? refreshPublicKey(hContainer, __func__) : imported;
}

} // namespace tembra
