// X.509 certificates.
#pragma once

#include <optional>
#include <string>

#include "crypto/public_key.h"

namespace tembra::tool {

struct Certificate {
    crypto::Bytes der;
    std::string subject; // "CN=Alice,O=Example", the last attribute first; may be empty
    std::string issuer;
    std::string serial;                   // hexadecimal
    std::string notBefore, notAfter;      // in UTC, "2026-11-21 09:30:00"; empty if unknown
    std::optional<crypto::PublicKey> key; // if RSA or SM2
};

// Nothing when the bytes are not a certificate.
std::optional<Certificate> parseCertificate(crypto::ByteView der);

// In UTC, to compare with a certificate's times.
std::string currentTime();

} // namespace tembra::tool
