#include "tembrakey/formats/pem_files.h"

#include "crypto/pem.h"
#include "tembrakey/cli/failure.h"
#include "tembrakey/formats/certificate.h"
#include "tembrakey/io/files.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

// The file's first block of this label, or the whole file when it is DER.
crypto::SecretBytes readDer(const std::string &path, std::string_view pemLabel) {
    crypto::SecretBytes content = readWhole(path);
    if (isDerSequence(content))
        return content;
    if (const auto blocks = crypto::decodePem(crypto::asText(content))) {
        for (const crypto::PemBlock &block : *blocks)
            if (block.label == pemLabel)
                return block.data;
    }
    throw Failure(ExitCode::usage, tr("{1} holds neither PEM \"{2}\" nor DER", {path, pemLabel}));
}

crypto::PublicKey required(const std::optional<crypto::PublicKey> &key, const std::string &path) {
    if (!key)
        throw Failure(ExitCode::usage, tr("{1} holds no RSA or SM2 public key", {path}));
    return *key;
}

} // namespace

crypto::Bytes readCertificate(const std::string &path) {
    const crypto::SecretBytes der = readDer(path, "CERTIFICATE");
    if (!certificateSubject(der))
        throw Failure(ExitCode::usage, tr("{1} holds no X.509 certificate", {path}));
    return {der.begin(), der.end()};
}

crypto::PublicKey readPublicKey(const std::string &path) {
    return required(crypto::decodePublicKey(readDer(path, "PUBLIC KEY")), path);
}

crypto::PublicKey readCertifiedKey(const std::string &path) {
    return required(certificatePublicKey(readCertificate(path)), path);
}

crypto::PrivateKey readPrivateKey(const std::string &path, crypto::ByteView content) {
    auto key = crypto::decodePrivateKeyPem(crypto::asText(content));
    if (!key)
        throw Failure(ExitCode::usage,
                      tr("{1} holds no unencrypted RSA or SM2 private key in PEM", {path}));
    return std::move(*key);
}

} // namespace tembra::tool
