#include "provider/certificate_cache.h"

#include "platform/memory.h"
#include "provider/lock.h"

#include <utility>

namespace tembra {

Certificate *allocateCertificate(std::size_t length) {
    auto *certificate = static_cast<Certificate *>(allocateZeroed(sizeof(Certificate) + length));
    if (certificate)
        certificate->m_references = 1;
    return certificate;
}

unsigned char *bytesOf(Certificate *certificate) {
    return reinterpret_cast<unsigned char *>(certificate + 1);
}

void releaseCertificate(Certificate *certificate) {
    if (!certificate)
        return;
    bool isLast = false;
    {
        const RecordLock lock;
        isLast = --certificate->m_references == 0;
    }
    if (isLast)
        std::free(certificate);
}

void replaceCertificate(Container *hContainer, bool isSign, Certificate *certificate, int length) {
    {
        const RecordLock lock;
        std::swap(isSign ? hContainer->m_signCert : hContainer->m_encCert, certificate);
        (isSign ? hContainer->m_signCertLen : hContainer->m_encCertLen) = length;
    }
    releaseCertificate(certificate);
}

CachedCertificate::CachedCertificate(const Container *hContainer, bool isSign) {
    const RecordLock lock;
    m_certificate = isSign ? hContainer->m_signCert : hContainer->m_encCert;
    m_length = isSign ? hContainer->m_signCertLen : hContainer->m_encCertLen;
    if (m_certificate)
        ++m_certificate->m_references;
}

} // namespace tembra
