#include <algorithm>

#include "crypto/hex.h"
#include "crypto/sm2_encoding.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/commands/options.h"
#include "tembrakey/formats/pem_files.h"
#include "tembrakey/formats/to_be_signed.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class Verify final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "signed file (-: standard input)")
            .required()
            .text("--signature FILE", m_signature, "signature, as written or printed by sign")
            .required()
            .text("-l,--label LABEL", m_label, "label of the signer's key on the token")
            .text("--key FILE", m_key, "public key of the signer, PEM or DER")
            .excludes("--label")
            .text("--cert FILE", m_certificate, "X.509 certificate of the signer, PEM or DER")
            .excludes("--label")
            .excludes("--key");
        declareSignerId(arguments, m_signerId);
    }
    void run(Context &context) override;

private:
    void refuseUnclear() const;
    crypto::PublicKey signersKey(const Context &context) const;
    crypto::Bytes signature() const;
    bool isRight(const crypto::RsaPublicKey &key) const;
    bool isRight(const crypto::Sm2PublicKey &key) const;

    std::string m_file;
    std::string m_signature;
    std::string m_label;
    std::string m_key;
    std::string m_certificate;
    std::string m_signerId{crypto::SM2_DEFAULT_SIGNER_ID};
};

void Verify::refuseUnclear() const {
    if (m_label.empty() && m_key.empty() && m_certificate.empty())
        throw Failure(ExitCode::usage, tr("a key is required: use --label, --key or --cert"));
    const std::string files[] = {m_file, m_signature, m_key, m_certificate};
    if (std::ranges::count(files, std::string("-")) > 1)
        throw Failure(ExitCode::usage,
                      tr("standard input can be read only once: use - for one file"));
}

crypto::PublicKey Verify::signersKey(const Context &context) const {
    if (!m_key.empty())
        return readPublicKey(m_key);
    if (!m_certificate.empty())
        return readCertifiedKey(m_certificate);
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    return publicKey(chooseKeyPair(device, {m_label, "sign"}));
}

// Binary signatures cannot be mistaken for hex: the DER tag is not a digit, and an RSA signature
// does not consist of digits alone.
crypto::Bytes Verify::signature() const {
    const crypto::SecretBytes content = readWhole(m_signature);
    std::string text(content.begin(), content.end());
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    const auto bytes = crypto::fromHex(text);
    return bytes ? *bytes : crypto::Bytes(content.begin(), content.end());
}

bool Verify::isRight(const crypto::RsaPublicKey &key) const {
    return crypto::rsaVerify(key, rsaToBeSigned(m_file), signature());
}

bool Verify::isRight(const crypto::Sm2PublicKey &key) const {
    const auto numbers = crypto::decodeSm2Signature(signature());
    const crypto::Bytes digest = sm2ToBeSigned(m_file, key, m_signerId);
    return numbers && crypto::sm2Verify(key, digest, *numbers);
}

void Verify::run(Context &context) {
    refuseUnclear();
    const crypto::PublicKey key = signersKey(context);
    if (!crypto::isUsable(key))
        throw Failure(ExitCode::usage, tr("the public key cannot be used: RSA keys have 512 to "
                                          "4096 bits, SM2 keys are points on the curve"));
    if (!std::visit([&](const auto &one) { return isRight(one); }, key))
        throw Failure(ExitCode::badSignature,
                      tr("wrong signature of {1}: another file, key or signer's identity?",
                         {inputName(m_file)}));
    const auto *rsa = std::get_if<crypto::RsaPublicKey>(&key);
    const int bits = rsa == nullptr ? 256 : static_cast<int>(rsa->bits());
    context.console.result(
        {{"file", m_file},
         {"algorithm", rsa == nullptr ? "sm2-sm3" : "rsa-sha256"},
         {"bits", bits},
         {"ok", true}},
        tr("Signature of {1} is valid ({2}, {3} bits)",
           {inputName(m_file), rsa == nullptr ? "sm2" : "rsa", std::to_string(bits)}));
}

} // namespace

const CommandEntry verifyCommand = {
    "verify", N_("Check the signature of a file"),
    N_("The exit code is 0 when the signature is right and 11 when it is wrong. No PIN is needed,\n"
       "and with --key or --cert neither token nor provider. Only the key of a certificate is\n"
       "used: its issuer and validity are not checked."),
    "  tembrakey verify letter.txt --signature letter.sig --label alice\n"
    "  tembrakey verify letter.txt --signature letter.sig --key alice.pem\n"
    "  tembrakey verify - --signature letter.sig --cert alice.crt <letter.txt",
    make<Verify>};

} // namespace tembra::tool
