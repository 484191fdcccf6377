#include "tembrakey/formats/to_be_signed.h"

#include "crypto/rsa.h"
#include "tembrakey/io/failure.h"
#include "tembrakey/io/stream.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

crypto::Bytes withFile(crypto::Digest digest, const std::string &file) {
    forEachPiece(file, tr("Hashing"), [&](crypto::ByteView piece) { digest.update(piece); });
    return digest.value();
}

} // namespace

crypto::Bytes rsaToBeSigned(const std::string &file) {
    const crypto::Digest digest(crypto::DigestAlgorithm::sha256);
    return crypto::sha256DigestInfo(withFile(digest, file));
}

crypto::Bytes sm2ToBeSigned(const std::string &file, const crypto::Sm2PublicKey &key,
                            const std::string &signerId) {
    const auto z = crypto::sm2SignerDigest(key, signerId);
    if (!z)
        throw Failure(ExitCode::usage, tr("the signer's identity is longer than 8191 bytes"));
    crypto::Digest digest(crypto::DigestAlgorithm::sm3);
    digest.update(*z);
    return withFile(std::move(digest), file);
}

} // namespace tembra::tool
