// Public key handles: copies of a key pair's public key, independent of the device.
#include "log/trace.h"
#include "platform/memory.h"
#include "provider/buffer.h"
#include "provider/keypair_table.h"
#include "provider/public_key_cache.h"

using namespace tembra;

SPI_PUBLICKEY_HANDLE DeviceGetPublicKeyFromKeypair(SPI_KEYPAIR_HANDLE hKeypair) {
    const call_stack_tracer tracer("DeviceGetPublicKeyFromKeypair");
    if (!hKeypair) {
        TRACE_ERROR("hKeypair == 0");
        return nullptr;
    }
    auto *hPublicKey = allocateRecord<PublicKey>();
    if (!hPublicKey) {
        TRACE_ERROR("malloc memory fail");
        return nullptr;
    }
    hPublicKey->m_algo = hKeypair->m_algo;
    hPublicKey->m_keybits = hKeypair->m_keybits;

    const int keytype = hKeypair->m_keytype;
    if (keytype != ORVEL_PKI_KEYPAIRTYPE_SIGNATURE && keytype != ORVEL_PKI_KEYPAIRTYPE_ENCRYPT) {
        TRACE_INFO("unsupported keytype! hKeypair->m_keytype : %d", keytype);
        std::free(hPublicKey);
        return nullptr;
    }
    Container *hContainer = containerOf(hKeypair);
    const bool isSign = keytype == ORVEL_PKI_KEYPAIRTYPE_SIGNATURE;
    if (const char *message = hContainer ? copyPublicKey(hContainer, isSign, hPublicKey)
                                         : missingContainer(hKeypair)) {
        TRACE_ERROR("%s", message);
        std::free(hPublicKey);
        return nullptr;
    }
    TRACE_INFO("hPublicKey = %p", static_cast<void *>(hPublicKey));
    return hPublicKey;
}

int DeviceExportPublicKey(SPI_PUBLICKEY_HANDLE hPublicKey, unsigned char *keyblob, int keybloblen,
                          int *pretkeybloblen) {
    const call_stack_tracer tracer("DeviceExportPublicKey");
    if (!hPublicKey) {
        TRACE_ERROR("hPublicKey=0");
        return TEMBRA_BAD_ARGUMENT;
    }
    if (hPublicKey->m_pubKeyLen <= 0) {
        TRACE_ERROR("m_pubKey==0 || m_pubKey<=0 ");
        return TEMBRA_BAD_ARGUMENT;
    }
    const int rv =
        copyOut(hPublicKey->m_pubKey, hPublicKey->m_pubKeyLen, keyblob, keybloblen, pretkeybloblen);
    if (rv == TEMBRA_SUCCESS && keyblob)
        TRACE_HEX("keyblob[length:%d]: %s", keyblob, shown(pretkeybloblen));
    return rv;
}

int DeviceGetPublicKeyAlgorithm(SPI_PUBLICKEY_HANDLE hPublicKey) {
    const call_stack_tracer tracer("DeviceGetPublicKeyAlgorithm");
    if (!hPublicKey)
        return TEMBRA_BAD_ARGUMENT;
    TRACE_INFO("hPublicKey->m_algo = %d", hPublicKey->m_algo);
    return hPublicKey->m_algo;
}

int DeviceGetPublicKeyBits(SPI_PUBLICKEY_HANDLE hPublicKey) {
    const call_stack_tracer tracer("DeviceGetPublicKeyBits");
    if (!hPublicKey)
        return TEMBRA_BAD_ARGUMENT;
    TRACE_INFO("SPI_PUBLICKEY_HANDLE hPublicKey->m_keybits = %d", hPublicKey->m_keybits);
    return hPublicKey->m_keybits;
}

int DeviceFreePublicKey(SPI_PUBLICKEY_HANDLE hPublicKey) {
    const call_stack_tracer tracer("DeviceFreePublicKey");
    if (!hPublicKey)
        return TEMBRA_SUCCESS;
    std::free(hPublicKey);
    TRACE_DEBUG("hPublicKey = NULL, line: %d", 0);
    return TEMBRA_SUCCESS;
}
