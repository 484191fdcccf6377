// Finding the key pair that the user means.
#pragma once

#include <string>

#include "crypto/public_key.h"
#include "tembrakey/provider/session.h"

namespace tembra::tool {

struct KeyPairChoice {
    std::string label;         // empty: the only one of its type
    std::string type = "sign"; // or "encrypt"
};

// Throws Failure (notFound) when there is none, or when no label was given and there are several.
KeyPair chooseKeyPair(const Device &device, const KeyPairChoice &choice);

std::string label(const KeyPair &pair);
const char *typeName(const KeyPair &pair);      // "sign", "encrypt"
const char *algorithmName(const KeyPair &pair); // "sm2", "rsa"
bool isRsa(const KeyPair &pair);

// The certificate in DER; empty if there is none. Throws Failure.
crypto::Bytes certificateDer(const KeyPair &pair);

// The public key as the host library encodes it (SubjectPublicKeyInfo), and decoded. Throw Failure.
crypto::Bytes publicKeyDer(const KeyPair &pair);
crypto::PublicKey publicKey(const KeyPair &pair);

} // namespace tembra::tool
