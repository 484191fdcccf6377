#include "import/blob.h"
#include "import/host_buffer.h"
#include "import/key_import.h"
#include "log/trace.h"
#include "platform/skf_arguments.h"
#include "provider/keypair_table.h"
#include "provider/outcome.h"
#include "provider/public_key_cache.h"
#include "provider/public_key_reader.h"

#include <cstring>

namespace tembra {

namespace {

struct Parsed {
    int symmetricAlgorithm;          // SKF identifier
    const unsigned char *wrappedKey; // the symmetric key under the signature key, PKCS #1 v1.5
    std::uint32_t wrappedKeyLen;
    const unsigned char *privateKey; // the encrypted DER private key
    std::uint32_t privateKeyLen;
};

// Each step returns the message of the check that failed, or null.

const char *checkSignatureKey(BlobReader &in, const Container *hContainer, std::size_t &nLen,
                              const char *function) {
    if (!in.has(4))
        return "keyblobLen - pos < 4";
    const std::uint32_t len = in.takeNumber();
    if (!in.has(len))
        return "keyblobLen - pos < len";
    if (!hContainer->m_signPubKey)
        return "hContainer->m_signPubKey == 0";
    HostBuffer n;
    HostBuffer e;
    const int result =
        OrvelPKICryptoDecodeRSAPubKey(hContainer->m_signPubKey, hContainer->m_signPubKeyLen,
                                      n.data(), n.length(), e.data(), e.length());
    if (result != 1) {
        TEMBRA_TRACE(TraceLevel::error, function, "OrvelPKICryptoDecodeRSAPubKey fail, error = %d",
                     result);
        return ALREADY_LOGGED;
    }
    if (len != n.size())
        return "len != nLen";
    if (len != 0 && std::memcmp(n.bytes(), in.take(len), len) != 0)
        return "memcmp(n, &keyblob[pos], len) != 0";
    if (!in.has(4))
        return "keyblobLen - pos < 4";
    const std::uint32_t eLen = in.takeNumber();
    if (!in.has(e.size()))
        return "keyblobLen - pos < eLen";
    if (eLen != e.size())
        return "rvlen != eLen";
    if (eLen != 0 && std::memcmp(e.bytes(), in.take(eLen), eLen) != 0)
        return "memcmp(e, &keyblob[pos], len) != 0";
    nLen = n.size();
    return nullptr;
}

const char *readEnvelope(BlobReader &in, std::size_t nLen, Parsed &parsed) {
    if (!in.has(4))
        return "keyblobLen - pos < 4";
    parsed.symmetricAlgorithm = envelopeAlgorithm(in.takeNumber());
    if (parsed.symmetricAlgorithm == -1)
        return "unsupportd algorithm";
    if (!in.has(4))
        return "keyblobLen - pos < 4";
    parsed.wrappedKeyLen = in.takeNumber();
    if (parsed.wrappedKeyLen != nLen)
        return "encKeyLen != nLen";
    if (!in.has(parsed.wrappedKeyLen))
        return "keyblobLen - pos < encKeyLen";
    parsed.wrappedKey = in.take(parsed.wrappedKeyLen);
    if (!in.has(4))
        return "keyblobLen - pos < 4";
    parsed.privateKeyLen = in.takeNumber();
    if (parsed.privateKeyLen == 0)
        return "cipherLen <= 0";
    if (in.remaining() != parsed.privateKeyLen)
        return "keyblobLen - pos != cipherLen";
    parsed.privateKey = in.take(parsed.privateKeyLen);
    return nullptr;
}

// Fewer codes than for SM2: only these two mean that the user is not logged in.
bool meansNotLoggedIn(ULONG rv) {
    return rv == 0x0A00000D || rv == SAR_USER_NOT_LOGGED_IN;
}

int importIntoToken(const Container *hContainer, const Parsed &parsed, const char *function) {
    const ULONG rv = SKF_ImportRSAKeyPair(hContainer->m_hContainer,
                                          static_cast<ULONG>(parsed.symmetricAlgorithm),
                                          skfInput(parsed.wrappedKey), parsed.wrappedKeyLen,
                                          skfInput(parsed.privateKey), parsed.privateKeyLen);
    if (meansNotLoggedIn(rv))
        return TEMBRA_NOT_LOGGED_IN;
    if (rv == SAR_OK)
        return TEMBRA_SUCCESS;
    TEMBRA_TRACE(TraceLevel::error, function, "SKF_ImportRSAKeyPair fail, error = 0x%08X", rv);
    return TEMBRA_FAILURE;
}

} // namespace

int importRSAKeyPair(const Device *hDevice, Container *hContainer, const unsigned char *keyblob,
                     int keyblobLen) {
    BlobReader in(keyblob, static_cast<std::size_t>(keyblobLen));
    Parsed parsed = {};
    std::size_t nLen = 0;
    if (const char *message = checkSignatureKey(in, hContainer, nLen, __func__))
        return fail(message, __func__);
    if (const char *message = readEnvelope(in, nLen, parsed))
        return fail(message, __func__);
    if (isTableFull(hDevice))
        return fail(TABLE_FULL, "DeviceImportKeypair");
    const int imported = importIntoToken(hContainer, parsed, __func__);
    if (imported != TEMBRA_SUCCESS)
        return imported;

    unsigned char *key = nullptr;
    int keyLen = 0;
    if (GetRSAPublicKey(hContainer->m_hContainer, 0, &key, &keyLen, nullptr) != 1)
        return fail("GetRSAPublicKey fail", __func__);
    replacePublicKey(hContainer, false, key, keyLen);
    return TEMBRA_SUCCESS;
}

} // namespace tembra
