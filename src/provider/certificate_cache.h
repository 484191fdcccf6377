// The certificates that a container caches, in counted blocks. Their bytes never change, so a
// reader who holds a reference copies them without a lock, whatever an update does meanwhile.
#pragma once

#include "provider/records.h"

#include <cstddef>

namespace tembra {

// A zeroed block with one reference; null when out of memory.
Certificate *allocateCertificate(std::size_t length);
unsigned char *bytesOf(Certificate *certificate);

// Gives a reference back; the last one frees the block. Null does nothing.
void releaseCertificate(Certificate *certificate);

// Caches a certificate and takes the caller's reference over. Null with a length stands for a
// certificate on the token without a copy here.
void replaceCertificate(Container *hContainer, bool isSign, Certificate *certificate, int length);

// Holds a reference to a cached certificate for a block.
class CachedCertificate {
public:
    CachedCertificate(const Container *hContainer, bool isSign);
    ~CachedCertificate() { releaseCertificate(m_certificate); }
    CachedCertificate(const CachedCertificate &) = delete;
    CachedCertificate &operator=(const CachedCertificate &) = delete;

    int length() const { return m_length; }
    // Null without a copy.
    const unsigned char *bytes() const { return m_certificate ? bytesOf(m_certificate) : nullptr; }

private:
    Certificate *m_certificate;
    int m_length;
};

} // namespace tembra
