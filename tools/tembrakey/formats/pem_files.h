// Files with keys and certificates, in PEM or DER. All failures are Failure.
#pragma once

#include <string>

#include "crypto/private_key.h"
#include "crypto/public_key.h"
#include "tembrakey/formats/certificate.h"

namespace tembra::tool {

Certificate readCertificate(const std::string &path);

// A public key from "PUBLIC KEY" PEM or SubjectPublicKeyInfo DER.
crypto::PublicKey readPublicKey(const std::string &path);

crypto::PublicKey readCertifiedKey(const std::string &path);

// An unencrypted private key from PEM: PKCS #8, PKCS #1 or SEC 1.
crypto::PrivateKey readPrivateKey(const std::string &path, crypto::ByteView content);

} // namespace tembra::tool
