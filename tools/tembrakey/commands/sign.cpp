#include "crypto/hex.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/formats/to_be_signed.h"
#include "tembrakey/io/files.h"
#include "tembrakey/provider/buffers.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class Sign final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "The file to sign (- is standard input)").required();
        m_key.describe(arguments, false);
        m_signerId.describe(arguments);
        arguments.text("-o,--out FILE", m_out,
                       "Where the signature goes as bytes (else it is printed in hex)");
        m_pin.describe(arguments);
    }
    void run(Context &context) override;

private:
    crypto::Bytes sm2Digest(const KeyPair &pair) const;

    std::string m_file;
    KeyPairChoice m_key;
    SignerId m_signerId;
    std::string m_out;
    PinSource m_pin{"pin", "User PIN"};
};

crypto::Bytes Sign::sm2Digest(const KeyPair &pair) const {
    const auto key = publicKey(pair);
    const auto *sm2 = std::get_if<crypto::Sm2PublicKey>(&key);
    if (sm2 == nullptr)
        throw Failure(ExitCode::failure, tr("The public key of {1} is no SM2 key", {label(pair)}));
    return sm2ToBeSigned(m_file, *sm2, m_signerId);
}

void Sign::run(Context &context) {
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    const KeyPair pair = chooseKeyPair(device, m_key);
    const bool rsa = isRsa(pair);
    const int algorithm =
        rsa ? ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN : ORVEL_PKI_ALGORITHM_SM2_SIGN;
    const crypto::Bytes toSign = rsa ? rsaToBeSigned(m_file) : sm2Digest(pair);
    logIn(device, m_pin);
    const auto signature = readBytes("DeviceSign", [&](auto *buffer, int capacity, int *length) {
        return session->DeviceSign(pair.get(), algorithm, nullptr, toSign.data(),
                                   static_cast<int>(toSign.size()), buffer, capacity, length);
    });
    Record record;
    record.add("label", label(pair)).add("algorithm", rsa ? "rsa-sha256" : "sm2-sm3");
    if (m_out.empty()) {
        const std::string hex = crypto::toHex(signature);
        context.console.result(record.add("signature", hex), hex);
        return;
    }
    writeWhole(m_out, signature);
    if (m_out != "-")
        context.console.result(record.add("out", m_out), tr("Signature written to {1}", {m_out}));
}

} // namespace

const CommandEntry signCommand = {
    "sign", "Sign a file with a key on the token",
    "SM2 keys sign the SM3 digest of Z and the file; the signature is DER. RSA keys sign the "
    "file's\n"
    "SHA-256 digest with PKCS #1 v1.5 padding.",
    "  tembrakey sign letter.txt --label alice --out letter.sig --pin-env PIN\n"
    "  tembrakey verify letter.txt --signature letter.sig --label alice\n"
    "  openssl dgst -sm3 -verify alice.pem -sigopt distid:1234567812345678 \\\n"
    "      -signature letter.sig letter.txt\n"
    "  tembrakey sign letter.txt --label bob --out letter.rsa\n"
    "  openssl dgst -sha256 -verify bob.pem -signature letter.rsa letter.txt",
    make<Sign>};

} // namespace tembra::tool
