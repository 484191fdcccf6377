// SM2 signatures (GB/T 32918.2).
#pragma once

#include <optional>
#include <string_view>

#include "digest.h"
#include "sm2_key.h"

namespace tembra::crypto {

// The signer's identity that is used unless the parties agreed on another one (GM/T 0009).
constexpr std::string_view SM2_DEFAULT_SIGNER_ID = "1234567812345678";

struct Sm2Signature {
    Sm2Number r{};
    Sm2Number s{};

    friend bool operator==(const Sm2Signature &, const Sm2Signature &) = default;
};

// Z, the SM3 digest of the signer's identity, the curve and the public key. Empty if the identity
// is longer than 8191 bytes.
std::optional<Sm3Digest> sm2SignerDigest(const Sm2PublicKey &key,
                                         std::string_view signerId = SM2_DEFAULT_SIGNER_ID);

// Signs a digest of exactly 32 bytes, usually SM3(Z || message). Empty if the length or the key is
// wrong.
std::optional<Sm2Signature> sm2Sign(const Sm2KeyPair &pair, ByteView digest);
bool sm2Verify(const Sm2PublicKey &key, ByteView digest, const Sm2Signature &signature);

} // namespace tembra::crypto
