// Finding the key pair that the user means.
#pragma once

#include <string>

#include "crypto/public_key.h"
#include "tembrakey/cli/arguments.h"
#include "tembrakey/provider/session.h"

namespace tembra::tool {

// How a key pair is named on the command line: --label and --type.
struct KeyPairChoice {
    std::string label; // empty: the only one of its type
    std::string type = "sign";

    // Declares both; the type only where a command works with either.
    void describe(Arguments &arguments, bool withType);
    int typeNumber() const; // ORVEL_PKI_KEYPAIRTYPE_
};

// Throws Failure (NotFound) when there is none, or when no label was given and there are several.
KeyPair chooseKeyPair(const Device &device, const KeyPairChoice &choice);

std::string label(const KeyPair &pair);
const char *typeName(const KeyPair &pair);      // "sign", "encrypt"
const char *algorithmName(const KeyPair &pair); // "sm2", "rsa"
bool isRsa(const KeyPair &pair);

// The public key as the host library encodes it (SubjectPublicKeyInfo), and decoded. Throw Failure.
crypto::Bytes publicKeyDer(const KeyPair &pair);
crypto::PublicKey publicKey(const KeyPair &pair);

} // namespace tembra::tool
