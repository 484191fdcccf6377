#include <algorithm>

#include "crypto/hex.h"
#include "crypto/sm2_encoding.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/formats/pem_files.h"
#include "tembrakey/formats/to_be_signed.h"
#include "tembrakey/io/files.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class Verify final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", file_, "The signed file (- is standard input)")
            .required()
            .text("--signature FILE", signature_, "The signature, as sign writes or prints it")
            .required()
            .text("-l,--label LABEL", label_, "The label of the signer's key on the token")
            .text("--key FILE", key_, "The signer's public key, PEM or DER")
            .excludes("--label")
            .text("--cert FILE", certificate_, "The signer's X.509 certificate, PEM or DER")
            .excludes("--label")
            .excludes("--key");
        signerId_.describe(arguments);
    }
    void run(Context &context) override;

private:
    void refuseUnclear() const;
    crypto::PublicKey signersKey(const Context &context) const;
    crypto::Bytes signature() const;
    bool isRight(const crypto::RsaPublicKey &key) const;
    bool isRight(const crypto::Sm2PublicKey &key) const;

    std::string file_;
    std::string signature_;
    std::string label_;
    std::string key_;
    std::string certificate_;
    SignerId signerId_;
};

void Verify::refuseUnclear() const {
    if (label_.empty() && key_.empty() && certificate_.empty())
        throw Failure(ExitCode::Usage, tr("Give the key with --label, --key or --cert"));
    const std::string files[] = {file_, signature_, key_, certificate_};
    if (std::ranges::count(files, std::string("-")) > 1)
        throw Failure(ExitCode::Usage,
                      tr("Standard input can be read only once: use - for one file"));
}

crypto::PublicKey Verify::signersKey(const Context &context) const {
    if (!key_.empty())
        return readPublicKey(key_);
    if (!certificate_.empty())
        return readCertifiedKey(certificate_);
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    return publicKey(chooseKeyPair(device, {label_, "sign"}));
}

// Bytes cannot be taken for hex: a tag of DER is no digit, and the many of RSA never all are.
crypto::Bytes Verify::signature() const {
    const crypto::SecretBytes content = readWhole(signature_);
    std::string text(content.begin(), content.end());
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    const auto bytes = crypto::fromHex(text);
    return bytes ? *bytes : crypto::Bytes(content.begin(), content.end());
}

bool Verify::isRight(const crypto::RsaPublicKey &key) const {
    return crypto::rsaVerify(key, rsaToBeSigned(file_), signature());
}

bool Verify::isRight(const crypto::Sm2PublicKey &key) const {
    const auto numbers = crypto::decodeSm2Signature(signature());
    const crypto::Bytes digest = sm2ToBeSigned(file_, key, signerId_);
    return numbers && crypto::sm2Verify(key, digest, *numbers);
}

void Verify::run(Context &context) {
    refuseUnclear();
    const crypto::PublicKey key = signersKey(context);
    if (!crypto::isUsable(key))
        throw Failure(ExitCode::Usage, tr("The public key cannot be used: RSA keys have 512 to "
                                          "4096 bits, SM2 keys lie on the curve"));
    if (!std::visit([&](const auto &one) { return isRight(one); }, key))
        throw Failure(
            ExitCode::BadSignature,
            tr("Signature of {1} is wrong: another file, key or signer's identity?", {file_}));
    const auto *rsa = std::get_if<crypto::RsaPublicKey>(&key);
    const int bits = rsa == nullptr ? 256 : static_cast<int>(rsa->bits());
    context.console.result(Record()
                               .add("file", file_)
                               .add("algorithm", rsa == nullptr ? "sm2-sm3" : "rsa-sha256")
                               .add("bits", bits)
                               .add("ok", true),
                           tr("Signature of {1} is right ({2}, {3} bits)",
                              {file_, rsa == nullptr ? "sm2" : "rsa", std::to_string(bits)}));
}

} // namespace

const CommandEntry verifyCommand = {
    "verify", "Check the signature of a file",
    "The exit code is 0 when the signature is right and 11 when it is wrong. No PIN is needed,\n"
    "and with --key or --cert neither token nor provider. Of a certificate only the key is used:\n"
    "who issued it, and until when it holds, is for you to check.",
    "  tembrakey verify letter.txt --signature letter.sig --label alice\n"
    "  tembrakey verify letter.txt --signature letter.sig --key alice.pem\n"
    "  tembrakey verify - --signature letter.sig --cert alice.crt <letter.txt",
    make<Verify>};

} // namespace tembra::tool
