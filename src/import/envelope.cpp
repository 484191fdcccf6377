#include "import/envelope.h"

#include "import/envelope_steps.h"
#include "platform/skf_arguments.h"
#include "provider/cipher_algorithms.h"
#include "provider/keypair_table.h"
#include "provider/lifecycle.h"

#include <climits>

namespace tembra {

namespace {

constexpr int KEYPAIR_BLOB_MIN = 17;

constexpr ULONG CAP_ECB = 0x00000001;
constexpr ULONG CAP_SM1 = 0x00000100;
constexpr ULONG CAP_SSF33 = 0x00000200;
constexpr ULONG CAP_SMS4 = 0x00000400;

// 0 if the token has none of them.
int chooseAlgorithm(ULONG algSymCap) {
    if (!(algSymCap & CAP_ECB))
        return 0;
    if (algSymCap & CAP_SM1)
        return ORVEL_PKI_ALGORITHM_SM1_ECB;
    if (algSymCap & CAP_SSF33)
        return ORVEL_PKI_ALGORITHM_SSF33_ECB;
    return algSymCap & CAP_SMS4 ? ORVEL_PKI_ALGORITHM_SMS4_ECB : 0;
}

} // namespace

bool SymmetricKey::draw(const Device *hDevice) {
    hostAlgo = chooseAlgorithm(hDevice->m_info.AlgSymCap);
    return hostAlgo != 0 &&
           OrvelPKICryptoGenerateRandom(g_pseudoDevice, SYMMETRIC_KEY_LEN, key.data()) == 1;
}

bool encryptOnToken(const Device *hDevice, const SymmetricKey &key, bool padded,
                    const unsigned char *data, std::size_t dataLen, unsigned char *out,
                    std::size_t capacity, std::size_t *outLen) {
    HANDLE hKey = nullptr;
    const int algorithm = skfCipherAlgorithm(key.hostAlgo);
    if (SKF_SetSymmKey(hDevice->m_hDev, skfInput(key.key.data()), static_cast<ULONG>(algorithm),
                       &hKey) != SAR_OK)
        return false;
    BLOCKCIPHERPARAM param = {};
    param.PaddingType = padded ? 1 : 0;
    ULONG length = static_cast<ULONG>(capacity);
    ULONG rv = SKF_EncryptInit(hKey, param);
    if (rv == SAR_OK)
        rv = SKF_Encrypt(hKey, skfInput(data), static_cast<ULONG>(dataLen), out, &length);
    SKF_CloseHandle(hKey);
    *outLen = length;
    if (rv == SAR_OK && length <= capacity)
        return true;
    platform::wipe(out, capacity); // a failing token may leave plaintext there
    return false;
}

bool wrapKey(const HostBuffer &publicKey, int algo, const void *param, const SymmetricKey &key,
             HostBuffer &wrapped) {
    void *imported = nullptr;
    if (OrvelPKICryptoImportPublicKey(g_pseudoDevice, publicKey.bytes(),
                                      static_cast<int>(publicKey.size()), &imported) != 1)
        return false;
    const int rv = OrvelPKICryptoPublicKeyEncrypt(
        imported, algo, param, key.key.data(), SYMMETRIC_KEY_LEN, wrapped.data(), wrapped.length());
    OrvelPKICryptoFreePublicKey(imported);
    return rv == 1;
}

void writeHeader(BlobWriter &out, int algo, std::size_t payloadLen) {
    out.bytes("SCAENCKP", 8);
    out.number(1);
    out.number(static_cast<std::uint32_t>(algo));
    out.number(static_cast<std::uint32_t>(payloadLen));
}

int EncKeyPairBlob(const Keypair *hSignKeypair, const unsigned char *keyblob, int keybloblen,
                   unsigned char **encblob, int *encbloblen) {
    if (keybloblen < KEYPAIR_BLOB_MIN)
        return 0;
    BlobReader in(keyblob, static_cast<std::size_t>(keybloblen));
    in.take(8);
    if (in.takeNumber() != static_cast<std::uint32_t>(hSignKeypair->m_algo))
        return 0;
    const Device *hDevice = deviceOf(hSignKeypair);
    const Container *hContainer = containerOf(hSignKeypair);
    if (!hDevice || !hContainer)
        return 0;
    if (hSignKeypair->m_algo == ORVEL_PKI_ALGORITHM_ECC)
        return envelopeSM2(hDevice, hContainer, keyblob, keybloblen, encblob, encbloblen);
    return envelopeRSA(hDevice, hContainer, keyblob, keybloblen, encblob, encbloblen);
}

} // namespace tembra
