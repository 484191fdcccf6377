#include "crypto/sm2_encoding.h"
#include "tembrakey/commands/cipher.h"
#include "tembrakey/commands/device_command.h"
#include "tembrakey/commands/options.h"

namespace tembra::tool {

namespace {

class Encrypt final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "file to encrypt (-: standard input)").required();
        m_cipher.declare(arguments);
        m_out.declare(arguments,
                      N_("write the ciphertext to this file (default: standard output)"));
    }

private:
    void prepare(const Console &console) override { m_out.requireBinary(console, {m_file}); }
    void work(const Console &console, const Device &device) override {
        const auto bytes = runCipher(device, m_cipher, true, m_file, m_out.path());
        m_out.report(console, {{"bytes", bytes}}, N_("Ciphertext written to {1}"));
    }

    std::string m_file;
    CipherOptions m_cipher;
    OutputOption m_out;
};

class Decrypt final : public DeviceCommand {
public:
    Decrypt() { m_key.type = "encrypt"; }
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "file to decrypt (-: standard input)").required();
        declareKeyPair(arguments, m_key);
        m_login.declare(arguments);
        m_cipher.declare(arguments);
        m_out.declare(arguments, N_("write the plaintext to this file (default: standard output)"));
    }

private:
    void prepare(const Console &console) override { m_out.requireBinary(console, {m_file}); }
    void work(const Console &console, const Device &device) override;
    crypto::SecretBytes withPrivateKey(const Device &device) const;

    std::string m_file;
    KeyPairChoice m_key;
    LoginOption m_login;
    CipherOptions m_cipher;
    OutputOption m_out;
};

// SM2 ciphertext in DER becomes flat, flat stays as it is.
crypto::SecretBytes flat(crypto::SecretBytes cipher) {
    const auto decoded = crypto::decodeSm2Ciphertext(cipher);
    if (!decoded)
        return cipher;
    const crypto::Bytes flattened = crypto::flattenSm2Ciphertext(*decoded);
    return {flattened.begin(), flattened.end()};
}

crypto::SecretBytes Decrypt::withPrivateKey(const Device &device) const {
    const KeyPair pair = chooseKeyPair(device, m_key);
    const bool rsa = isRsa(pair);
    const crypto::SecretBytes cipher = rsa ? readWhole(m_file) : flat(readWhole(m_file));
    m_login.logIn(device);
    const int algorithm =
        rsa ? ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC : ORVEL_PKI_ALGORITHM_SM2_ENC;
    const int hashAlgorithm = ORVEL_PKI_ALGORITHM_SM3;
    crypto::SecretBytes clear(cipher.size() + 1); // the ciphertext's length is the upper bound
    int length = 0;
    check("DevicePrivateKeyDecrypt",
          device.session()->DevicePrivateKeyDecrypt(pair.get(), algorithm,
                                                    rsa ? nullptr : &hashAlgorithm, cipher.data(),
                                                    static_cast<int>(cipher.size()), clear.data(),
                                                    static_cast<int>(clear.size()), &length),
          {TEMBRA_FAILURE, tr("the file is not a ciphertext for this key")});
    clear.resize(static_cast<std::size_t>(length));
    return clear;
}

void Decrypt::work(const Console &console, const Device &device) {
    std::uint64_t bytes = 0;
    if (m_cipher.keyGiven()) {
        bytes = runCipher(device, m_cipher, false, m_file, m_out.path());
    } else {
        const crypto::SecretBytes clear = withPrivateKey(device);
        writeWhole(m_out.path(), clear, Access::owner);
        bytes = clear.size();
    }
    m_out.report(console, {{"bytes", bytes}}, N_("Plaintext written to {1}"));
}

} // namespace

const CommandEntry encryptCommand = {
    "encrypt", N_("Encrypt a file on the token with a raw key"), "",
    "  tembrakey encrypt disk.img --key-file key.bin --iv $IV --out disk.sm4\n"
    "  tembrakey encrypt letter.txt --algo sm4-ecb --pad --key-file key.bin --out letter.sm4",
    make<Encrypt>};

const CommandEntry decryptCommand = {
    N_("decrypt"), N_("Decrypt a file on the token, with a raw key or with a private key"),
    N_("With --key-file or --key-hex the cipher is symmetric; else the private key of --label is "
       "used\n"
       "(SM2 ciphertext in DER as GM/T 0009 has it, or flat: 04 x y C2 C3; RSA PKCS #1 v1.5)."),
    "  tembrakey decrypt disk.sm4 --key-file key.bin --iv $IV --out disk.img\n"
    "  tembrakey key export --label alice --type encrypt --out alice-enc.pem\n"
    "  openssl pkeyutl -encrypt -pubin -inkey alice-enc.pem -in secret.txt -out secret.sm2\n"
    "  tembrakey decrypt secret.sm2 --label alice --pin-env PIN",
    make<Decrypt>};

} // namespace tembra::tool
