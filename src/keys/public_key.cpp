// Public key handles: snapshots of a key pair's public key, independent of the device.
#include "log/trace.h"
#include "platform/memory.h"
#include "provider/buffer.h"
#include "provider/keypair_table.h"
#include "provider/lock.h"

#include <cstdlib>
#include <cstring>

using namespace tembra;

namespace {

// Copies the cached encoding; an import on another thread may replace it meanwhile. False when it
// does not fit the record.
bool copyEncoding(const Container *hContainer, int keytype, PublicKey *hPublicKey) {
    const RecordLock lock;
    const bool isSign = keytype == ORVEL_PKI_KEYPAIRTYPE_SIGNATURE;
    const int length = isSign ? hContainer->m_signPubKeyLen : hContainer->m_encPubKeyLen;
    const unsigned char *key = isSign ? hContainer->m_signPubKey : hContainer->m_encPubKey;
    if (length < 0 || length > PUBLICKEY_LEN_MAX || (length > 0 && !key))
        return false;
    if (length > 0)
        std::memcpy(hPublicKey->m_pubKey, key, static_cast<std::size_t>(length));
    hPublicKey->m_pubKeyLen = length;
    return true;
}

} // namespace

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
    const Container *hContainer = containerOf(hKeypair);
    if (!hContainer) {
        TRACE_ERROR("hKeypair->m_device == 0");
        std::free(hPublicKey);
        return nullptr;
    }
    if (!copyEncoding(hContainer, keytype, hPublicKey)) {
        TRACE_ERROR("m_pubKeyLen > sizeof(hPublicKey->m_pubKey)");
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
        return ORVEL_PKI_BADARGUMENT;
    }
    if (hPublicKey->m_pubKeyLen <= 0) {
        TRACE_ERROR("m_pubKey==0 || m_pubKey<=0 ");
        return ORVEL_PKI_BADARGUMENT;
    }
    const int rv =
        handOut(hPublicKey->m_pubKey, hPublicKey->m_pubKeyLen, keyblob, keybloblen, pretkeybloblen);
    if (rv == ORVEL_PKI_SUCCESS && keyblob)
        TRACE_HEX("keyblob[length:%d]: %s", keyblob, shown(pretkeybloblen));
    return rv;
}

int DeviceGetPublicKeyAlgorithm(SPI_PUBLICKEY_HANDLE hPublicKey) {
    const call_stack_tracer tracer("DeviceGetPublicKeyAlgorithm");
    if (!hPublicKey)
        return ORVEL_PKI_BADARGUMENT;
    TRACE_INFO("hPublicKey->m_algo = %d", hPublicKey->m_algo);
    return hPublicKey->m_algo;
}

int DeviceGetPublicKeyBits(SPI_PUBLICKEY_HANDLE hPublicKey) {
    const call_stack_tracer tracer("DeviceGetPublicKeyBits");
    if (!hPublicKey)
        return ORVEL_PKI_BADARGUMENT;
    TRACE_INFO("SPI_PUBLICKEY_HANDLE hPublicKey->m_keybits = %d", hPublicKey->m_keybits);
    return hPublicKey->m_keybits;
}

int DeviceFreePublicKey(SPI_PUBLICKEY_HANDLE hPublicKey) {
    const call_stack_tracer tracer("DeviceFreePublicKey");
    if (!hPublicKey)
        return ORVEL_PKI_SUCCESS;
    std::free(hPublicKey);
    TRACE_DEBUG("hPublicKey = NULL, line: %d", 0);
    return ORVEL_PKI_SUCCESS;
}
