// Key pairs made outside brought to the token: all forms of blob with real cryptography, whole, cut
// and damaged.
#include "kit_test.h"

#include "crypto/key_pair_blob.h"
#include "crypto/public_key.h"
#include "crypto/sm2_encoding.h"
#include "tembrakey/formats/enveloped_key.h"
#include "tembrakey/text/text.h"

#include <memory>

namespace tembra::tool {
// What the tool would translate stays English here.
const char *tr(const char *english) {
    return english;
}
} // namespace tembra::tool

namespace tembra::test {
namespace {

const char *const LABELS[] = {"rsa1024", "rsa2048", "sm2"};

struct Form {
    const char *label; // of the container, and what kind of key it is
    bool isEnveloped;
    bool isGdk;
};
const Form FORMS[] = {{"sm2", true, false},     {"sm2", true, true},      {"sm2", false, false},
                      {"sm2", false, true},     {"rsa1024", true, false}, {"rsa1024", false, true},
                      {"rsa2048", true, false}, {"rsa2048", false, false}};

crypto::PrivateKey newKey(const std::string &label) {
    if (label == "sm2")
        return crypto::generateSm2KeyPair();
    return crypto::generateRsaKey(label == "rsa1024" ? 1024 : 2048).value();
}

class KitImport : public KitTest {
protected:
    void SetUp() override {
        KitTest::SetUp();
        trace().setLevel("1");
        setVariable("TEMBRA_KEY_PROV_REGISTRY", settings().string());
        logIn();
        for (const std::string label : LABELS) {
            const bool isSm2 = label == "sm2";
            generate(label.c_str(), isSm2 ? ORVEL_PKI_ALGORITHM_ECC : ORVEL_PKI_ALGORITHM_RSA,
                     isSm2 ? 256 : std::stoi(label.substr(3)));
        }
    }

    // Where the provider keeps settings elsewhere, the default stays and serves as well.
    void setGdk(bool isOn) {
        release();
        ASSERT_EQ(DeviceEnd(), 1);
        writeFile(settings(), "[HKEY_LOCAL_MACHINE\\Software\\ORVEL\\PKI\\Devices\\TembraKey]\r\n"
                              "\"SupportGDKMSM2Import\"=dword:0000000" +
                                  std::to_string(isOn) + "\r\n");
        ASSERT_EQ(DeviceInit(), 1);
        begin();
    }
    void begin() {
        discover();
        logIn();
    }

    Bytes blobOf(const Form &form, const crypto::PrivateKey &key) {
        if (!form.isEnveloped) {
            const crypto::SecretBytes blob = crypto::encodeKeyPairBlob(key);
            return Bytes(blob.begin(), blob.end());
        }
        const auto container = crypto::decodePublicKey(exportedKey(find(form.label, 2)));
        return tool::envelopeKeyPair(key, container.value(),
                                     form.isGdk ? tool::Sm2PrivateForm::gdk
                                                : tool::Sm2PrivateForm::plain);
    }

    // From a heap block of exactly the blob's size. The handle comes with success only.
    int import(const char *label, const Bytes &blob) {
        const std::unique_ptr<unsigned char[]> exact(new unsigned char[blob.size()]);
        std::copy(blob.begin(), blob.end(), exact.get());
        SPI_KEYPAIR_HANDLE handle = nullptr;
        const int result = DeviceImportKeypair(m_device, exact.get(), static_cast<int>(blob.size()),
                                               ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, label, &handle);
        EXPECT_EQ(handle != nullptr, result == 1);
        DeviceFreeKeypair(handle);
        return result;
    }

    // The token decrypts with the container's encryption key what was encrypted to this one.
    bool holds(const char *label, const crypto::PrivateKey &key) {
        const Bytes plain = {0, 1, 0xFE, 0xFF, 'k', 'e', 'y'};
        const auto *rsa = std::get_if<crypto::RsaPrivateKey>(&key);
        const Bytes cipher =
            rsa != nullptr
                ? crypto::rsaEncrypt(rsa->publicKey(), plain).value()
                : crypto::flattenSm2Ciphertext(
                      crypto::sm2Encrypt(std::get<crypto::Sm2KeyPair>(key).publicKey, plain)
                          .value());
        const int hash = ORVEL_PKI_ALGORITHM_SM3;
        Bytes clear(plain.size());
        int length = 0;
        const int result = DevicePrivateKeyDecrypt(
            find(label, ORVEL_PKI_KEYPAIRTYPE_ENCRYPT),
            rsa != nullptr ? ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC : ORVEL_PKI_ALGORITHM_SM2_ENC,
            &hash, cipher.data(), static_cast<int>(cipher.size()), clear.data(), 7, &length);
        return result == 1 && clear == plain;
    }

    // Refused with a line in the trace, or for what counts as a missing login without one; or else
    // the key is the right one after all.
    void tryDamaged(const char *label, const Bytes &blob, const crypto::PrivateKey &key) {
        trace().mark();
        const int result = import(label, blob);
        if (result == 1) {
            EXPECT_TRUE(holds(label, key)) << "another key got in";
            begin();
        } else {
            EXPECT_TRUE(result == TEMBRA_NOT_LOGGED_IN || !trace().failures().empty()) << result;
        }
    }

    std::filesystem::path settings() const { return m_directory.path() / "settings.reg"; }
};

TEST_F(KitImport, TheTokenDecryptsWithWhatCameIn) {
    for (const Form &form : FORMS) {
        SCOPED_TRACE(form.label + std::to_string(form.isEnveloped) + std::to_string(form.isGdk));
        setGdk(form.isGdk);
        const crypto::PrivateKey key = newKey(form.label);
        EXPECT_EQ(import(form.label, blobOf(form, key)), 1);
        EXPECT_TRUE(holds(form.label, key));
        begin(); // the pair is read back from the token
        EXPECT_TRUE(holds(form.label, key));
        EXPECT_FALSE(holds(form.label, newKey(form.label)));
    }
}

TEST_F(KitImport, CutAtEveryByteAndWithEveryByteFlipped) {
    for (const Form &form : FORMS) {
        setGdk(form.isGdk);
        const crypto::PrivateKey key = newKey(form.label);
        const Bytes blob = blobOf(form, key);
        for (std::size_t at = 0; at < blob.size() && !HasFailure(); ++at) {
            SCOPED_TRACE(form.label +
                         (form.isEnveloped ? std::string(" enveloped, ") : " plain, ") +
                         std::to_string(at) + " of " + std::to_string(blob.size()));
            tryDamaged(form.label, Bytes(blob.begin(), blob.begin() + static_cast<int>(at)), key);
            Bytes flipped = blob;
            flipped[at] ^= static_cast<unsigned char>(1u << at % 8);
            tryDamaged(form.label, flipped, key);
        }
    }
}

} // namespace
} // namespace tembra::test
