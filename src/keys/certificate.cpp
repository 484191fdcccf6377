// Certificates of a key pair: served from the container's cache, written through to the token.
#include "log/trace.h"
#include "platform/skf_arguments.h"
#include "provider/buffer.h"
#include "provider/certificate_cache.h"
#include "provider/keypair_table.h"
#include "provider/lock.h"
#include "provider/outcome.h"

#include <cstring>

using namespace tembra;

namespace {

bool isSignature(const Keypair *hKeypair) {
    return hKeypair->m_keytype == ORVEL_PKI_KEYPAIRTYPE_SIGNATURE;
}

int importRefused(ULONG rv, const char *function) {
    if (rv == SAR_USER_NOT_LOGGED_IN) {
        TEMBRA_TRACE(TraceLevel::warning, function, "rv == SAR_USER_NOT_LOGGED_IN");
        return TEMBRA_NOT_LOGGED_IN;
    }
    TEMBRA_TRACE(TraceLevel::error, function, "SKF_ImportCertificate fail, error = 0x%08X", rv);
    return TEMBRA_FAILURE;
}

// Caches the length even if memory runs out for the copy: the token has the new certificate.
bool cacheCopy(Container *hContainer, bool isSign, const unsigned char *certblob, int certbloblen) {
    const std::size_t length = static_cast<std::size_t>(certbloblen);
    Certificate *copy = allocateCertificate(length);
    if (copy)
        std::memcpy(bytesOf(copy), certblob, length);
    replaceCertificate(hContainer, isSign, copy, certbloblen);
    return copy;
}

const char *missingCopy(bool isSign) {
    return isSign ? "hKeypair->m_device->m_containers[hKeypair->m_index]->m_signCert == 0"
                  : "hKeypair->m_device->m_containers[hKeypair->m_index]->m_encCert == 0";
}

} // namespace

int DeviceGetCertificateCount(SPI_KEYPAIR_HANDLE hKeypair) {
    const call_stack_tracer tracer("DeviceGetCertificateCount");
    TRACE_INFO("hKeypair=%p, hKeypair->m_keytype = %d", static_cast<void *>(hKeypair),
               hKeypair ? hKeypair->m_keytype : 0);
    if (!hKeypair)
        return TEMBRA_BAD_ARGUMENT;
    const Container *hContainer = containerOf(hKeypair);
    if (!hContainer)
        return TEMBRA_BAD_ARGUMENT;
    const RecordLock lock;
    switch (hKeypair->m_keytype) {
    case ORVEL_PKI_KEYPAIRTYPE_SIGNATURE: return hContainer->m_signCertLen != 0;
    case ORVEL_PKI_KEYPAIRTYPE_ENCRYPT: return hContainer->m_encCertLen != 0;
    default: return TEMBRA_BAD_ARGUMENT;
    }
}

int DeviceGetCertificate(SPI_KEYPAIR_HANDLE hKeypair, int index, unsigned char *certblob,
                         int certbloblen, int *pretcertbloblen) {
    const call_stack_tracer tracer("DeviceGetCertificate");
    TRACE_INFO("SPI_KEYPAIR_HANDLE hKeypair = %p, int index = %d, unsigned char *certblob = %p, "
               "int certbloblen = %d, int *pretcertbloblen = %d",
               static_cast<void *>(hKeypair), index, static_cast<void *>(certblob), certbloblen,
               shown(pretcertbloblen));
    const Device *hDevice = hKeypair ? deviceOf(hKeypair) : nullptr;
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (index >= loadCount(hDevice->m_containerCount))
        return TEMBRA_BAD_ARGUMENT;
    const Container *hContainer = containerOf(hKeypair);
    if (!hContainer)
        return TEMBRA_NULL_HANDLE;
    const bool isSign = isSignature(hKeypair);
    const CachedCertificate cached(hContainer, isSign);
    if (cached.length() <= 0)
        return fail("len <= 0", __func__);
    if (cached.bytes() || !certblob || certbloblen < cached.length())
        return copyOut(cached.bytes(), cached.length(), certblob, certbloblen, pretcertbloblen);
    if (pretcertbloblen)
        *pretcertbloblen = cached.length();
    return fail(missingCopy(isSign), __func__);
}

int DeviceUpdateCertificate(SPI_KEYPAIR_HANDLE hKeypair, const unsigned char *certblob,
                            int certbloblen) {
    const call_stack_tracer tracer("DeviceUpdateCertificate");
    TRACE_INFO("SPI_KEYPAIR_HANDLE hKeypair = %p, const unsigned char *certblob = %p, "
               "int certbloblen = %d",
               static_cast<void *>(hKeypair), static_cast<const void *>(certblob), certbloblen);
    if (!hKeypair || !deviceOf(hKeypair))
        return TEMBRA_NULL_HANDLE;
    if (!certblob || certbloblen <= 0)
        return fail("certblob == 0 || certbloblen <= 0", __func__);

    ProviderLock lock;
    Container *hContainer = containerOf(hKeypair);
    if (!hContainer)
        return TEMBRA_NULL_HANDLE;
    const bool isSign = isSignature(hKeypair);
    const ULONG rv = SKF_ImportCertificate(hContainer->m_hContainer, isSign, skfInput(certblob),
                                           static_cast<ULONG>(certbloblen));
    if (rv != SAR_OK) {
        lock.leave();
        return importRefused(rv, __func__);
    }
    if (cacheCopy(hContainer, isSign, certblob, certbloblen))
        return TEMBRA_SUCCESS;

    lock.abandon(); // existing hosts rely on the lock staying held on this path
    TEMBRA_TRACE(isSign ? TraceLevel::error : TraceLevel::information, __func__, "%s",
                 missingCopy(isSign));
    return TEMBRA_FAILURE;
}
