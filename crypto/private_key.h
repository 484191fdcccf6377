// Private keys in DER and PEM: PKCS #1, SEC 1 and PKCS #8, unencrypted.
#pragma once

#include <optional>
#include <string_view>
#include <variant>

#include "rsa.h"
#include "sm2_key.h"

namespace tembra::crypto {

using PrivateKey = std::variant<RsaPrivateKey, Sm2KeyPair>;

// PKCS #1 RSAPrivateKey with two primes. Decoding does not check the numbers; see isConsistent.
SecretBytes encodePkcs1(const RsaPrivateKey &key);
std::optional<RsaPrivateKey> decodePkcs1(ByteView der);

// SEC 1 ECPrivateKey on the SM2 curve, which need not be named. The public key is computed; if the
// structure contains one, it must be the same.
std::optional<Sm2KeyPair> decodeSec1(ByteView der);

// PKCS #8 PrivateKeyInfo of an RSA or SM2 key. Attributes are skipped.
std::optional<PrivateKey> decodePkcs8(ByteView der);

// The first private key of a PEM text: "PRIVATE KEY", "RSA PRIVATE KEY", "EC PRIVATE KEY" or
// "SM2 PRIVATE KEY". Empty if it is not consistent.
std::optional<PrivateKey> decodePrivateKeyPem(std::string_view pem);

} // namespace tembra::crypto
