#include "tembrakey/formats/pem_files.h"

#include "crypto/der.h"
#include "crypto/pem.h"
#include "tembrakey/io/failure.h"
#include "tembrakey/io/files.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

bool isDerSequence(crypto::ByteView bytes) {
    crypto::DerReader reader(bytes);
    return reader.sequence() && reader.atEnd();
}

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
    throw Failure(ExitCode::usage,
                  tr("{1} contains neither PEM \"{2}\" nor DER", {inputName(path), pemLabel}));
}

crypto::PublicKey required(const std::optional<crypto::PublicKey> &key, const std::string &path) {
    if (!key)
        throw Failure(ExitCode::usage,
                      tr("{1} does not contain an RSA or SM2 public key", {inputName(path)}));
    return *key;
}

} // namespace

Certificate readCertificate(const std::string &path) {
    auto certificate = parseCertificate(readDer(path, "CERTIFICATE"));
    if (!certificate)
        throw Failure(ExitCode::usage,
                      tr("{1} does not contain an X.509 certificate", {inputName(path)}));
    return std::move(*certificate);
}

crypto::PublicKey readPublicKey(const std::string &path) {
    return required(crypto::decodePublicKey(readDer(path, "PUBLIC KEY")), path);
}

crypto::PublicKey readCertifiedKey(const std::string &path) {
    return required(readCertificate(path).key, path);
}

crypto::PrivateKey readPrivateKey(const std::string &path, crypto::ByteView content) {
    auto key = crypto::decodePrivateKeyPem(crypto::asText(content));
    if (!key)
        throw Failure(ExitCode::usage,
                      tr("{1} does not contain an unencrypted RSA or SM2 private key in PEM",
                         {inputName(path)}));
    return std::move(*key);
}

} // namespace tembra::tool
