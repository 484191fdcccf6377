#include "crypto/hex.h"
#include "tembrakey/commands/device_command.h"
#include "tembrakey/commands/options.h"
#include "tembrakey/formats/to_be_signed.h"
#include "tembrakey/provider/buffers.h"

namespace tembra::tool {

namespace {

class Sign final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "file to sign (-: standard input)").required();
        declareKeyPair(arguments, m_key, false);
        declareSignerId(arguments, m_signerId);
        m_out.declare(arguments, N_("write the signature to this file (default: print it in hex)"));
        m_login.declare(arguments);
    }

private:
    void prepare(const Console &) override { m_out.requireNoInput({m_file}); }
    void work(const Console &console, const Device &device) override;
    crypto::Bytes sm2Digest(const KeyPair &pair) const;

    std::string m_file;
    KeyPairChoice m_key;
    std::string m_signerId{crypto::SM2_DEFAULT_SIGNER_ID};
    OutputOption m_out;
    LoginOption m_login;
};

crypto::Bytes Sign::sm2Digest(const KeyPair &pair) const {
    const auto key = publicKey(pair);
    const auto *sm2 = std::get_if<crypto::Sm2PublicKey>(&key);
    if (sm2 == nullptr)
        throw Failure(ExitCode::failure,
                      tr("the public key of {1} is not an SM2 key", {label(pair)}));
    return sm2ToBeSigned(m_file, *sm2, m_signerId);
}

void Sign::work(const Console &console, const Device &device) {
    const KeyPair pair = chooseKeyPair(device, m_key);
    const bool rsa = isRsa(pair);
    const int algorithm =
        rsa ? ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN : ORVEL_PKI_ALGORITHM_SM2_SIGN;
    const crypto::Bytes toSign = rsa ? rsaToBeSigned(m_file) : sm2Digest(pair);
    m_login.logIn(device);
    const auto signature = readBytes("DeviceSign", [&](auto *buffer, int capacity, int *length) {
        return device.session()->DeviceSign(pair.get(), algorithm, nullptr, toSign.data(),
                                            static_cast<int>(toSign.size()), buffer, capacity,
                                            length);
    });
    m_out.deliver(console, {{"label", label(pair)}, {"algorithm", rsa ? "rsa-sha256" : "sm2-sm3"}},
                  signature, N_("Signature written to {1}"), "signature", crypto::toHex(signature));
}

} // namespace

const CommandEntry signCommand = {
    "sign", N_("Sign a file with a key on the token"),
    N_("SM2 keys sign the SM3 digest of Z and the file; the signature is DER. RSA keys sign the "
       "file's\n"
       "SHA-256 digest with PKCS #1 v1.5 padding."),
    "  tembrakey sign letter.txt --label alice --out letter.sig --pin-env PIN\n"
    "  tembrakey verify letter.txt --signature letter.sig --label alice\n"
    "  openssl dgst -sm3 -verify alice.pem -sigopt distid:1234567812345678 \\\n"
    "      -signature letter.sig letter.txt\n"
    "  tembrakey sign letter.txt --label bob --out letter.rsa\n"
    "  openssl dgst -sha256 -verify bob.pem -signature letter.rsa letter.txt",
    make<Sign>};

} // namespace tembra::tool
