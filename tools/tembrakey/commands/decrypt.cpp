#include "crypto/sm2_encoding.h"
#include "tembrakey/commands/cipher_job.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/io/files.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class Decrypt final : public Command {
public:
    Decrypt() { m_key.type = "encrypt"; }
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "The file to decrypt (- is standard input)").required();
        m_key.describe(arguments, true);
        m_pin.describe(arguments);
        m_cipher.describe(arguments);
        arguments.text("-o,--out FILE", m_out, "Where the plaintext goes (else standard output)");
    }
    void run(Context &context) override;

private:
    crypto::SecretBytes withPrivateKey(const Device &device) const;

    std::string m_file;
    KeyPairChoice m_key;
    PinSource m_pin{"pin", "User PIN"};
    CipherChoice m_cipher;
    std::string m_out = "-";
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
    const Session &session = device.session();
    const KeyPair pair = chooseKeyPair(device, m_key);
    const bool rsa = isRsa(pair);
    const crypto::SecretBytes cipher = rsa ? readWhole(m_file) : flat(readWhole(m_file));
    logIn(device, m_pin);
    const int hashAlgorithm = ORVEL_PKI_ALGORITHM_SM3;
    crypto::SecretBytes clear(cipher.size() + 1); // the ciphertext's length is the upper bound
    int length = 0;
    check("DevicePrivateKeyDecrypt",
          session->DevicePrivateKeyDecrypt(
              pair.get(),
              rsa ? ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC : ORVEL_PKI_ALGORITHM_SM2_ENC,
              rsa ? nullptr : &hashAlgorithm, cipher.data(), static_cast<int>(cipher.size()),
              clear.data(), static_cast<int>(clear.size()), &length));
    clear.resize(static_cast<std::size_t>(length));
    return clear;
}

void Decrypt::run(Context &context) {
    requireSeparateOutput(context.console, m_out);
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    if (m_cipher.keyGiven()) {
        reportOutput(context.console, runCipher(device, m_cipher, false, m_file, m_out), m_out);
        return;
    }
    const crypto::SecretBytes clear = withPrivateKey(device);
    writeWhole(m_out, clear);
    reportOutput(context.console, clear.size(), m_out);
}

} // namespace

const CommandEntry decryptCommand = {
    "decrypt", "Decrypt a file on the token, with a raw key or with a private key",
    "With --key-file or --key-hex the cipher is symmetric; else the private key of --label is "
    "used\n"
    "(SM2 ciphertext in DER as GM/T 0009 has it, or flat: 04 x y C2 C3; RSA PKCS #1 v1.5).",
    "  tembrakey decrypt disk.sm4 --key-file key.bin --iv $IV --out disk.img\n"
    "  tembrakey key export --label alice --type encrypt --out alice-enc.pem\n"
    "  openssl pkeyutl -encrypt -pubin -inkey alice-enc.pem -in secret.txt -out secret.sm2\n"
    "  tembrakey decrypt secret.sm2 --label alice --pin-env PIN",
    make<Decrypt>};

} // namespace tembra::tool
