// As much of X.509 as listing certificates and checking signatures needs.
#pragma once

#include <optional>
#include <string>

#include "crypto/public_key.h"

namespace tembra::tool {

// The subject as one line, "CN=Alice, O=Example"; empty text for an empty name. Nothing when the
// bytes are no certificate. Unknown attribute types appear as dotted numbers.
std::optional<std::string> certificateSubject(crypto::ByteView der);

// The key that is certified. Nothing when it is neither RSA nor SM2, or the bytes are no
// certificate.
std::optional<crypto::PublicKey> certificatePublicKey(crypto::ByteView der);

// Whether the bytes look like one DER SEQUENCE from beginning to end.
bool isDerSequence(crypto::ByteView bytes);

} // namespace tembra::tool
