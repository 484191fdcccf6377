// What the kit makes, OpenSSL reads, and the other way round.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "crypto/digest.h"
#include "crypto/pem.h"
#include "crypto/private_key.h"
#include "crypto/public_key.h"
#include "crypto/sm2_encoding.h"
#include "crypto_text.h"

namespace tembra::crypto {

namespace {

// A directory of its own with OpenSSL run in it.
class OpenSsl : public testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() /
                  ("tembra-openssl-" + std::to_string(std::random_device()()));
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }
    bool openssl(const std::string &arguments) const {
        const std::string command =
            "cd '" + folder_.string() + "' && openssl " + arguments + " >log 2>&1";
        const bool good = std::system(command.c_str()) == 0;
        EXPECT_TRUE(good) << arguments << "\n" << read("log");
        return good;
    }
    void write(const char *name, std::string_view content) const {
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }
    std::string read(const char *name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path folder_;
};

constexpr const char *message = "signed by one, verified by the other";

} // namespace

TEST_F(OpenSsl, Sm2) {
    ASSERT_TRUE(openssl("genpkey -algorithm EC -pkeyopt ec_paramgen_curve:SM2 -out key.pem"));
    const auto key = decodePrivateKeyPem(read("key.pem"));
    ASSERT_TRUE(key);
    const auto &pair = std::get<Sm2KeyPair>(*key);
    const auto digest = sm2MessageDigest(pair.publicKey, bytesOfText(message));

    write("public.pem", encodePem("PUBLIC KEY", encodePublicKey(pair.publicKey)));
    write("message", message);
    write("signature", textOf(encodeSm2Signature(*sm2Sign(pair, *digest))));
    EXPECT_TRUE(openssl("pkeyutl -verify -pubin -inkey public.pem -rawin -digest sm3 "
                        "-pkeyopt distid:1234567812345678 -in message -sigfile signature"));
    ASSERT_TRUE(openssl("pkeyutl -sign -inkey key.pem -rawin -digest sm3 "
                        "-pkeyopt distid:1234567812345678 -in message -out theirs"));
    const auto theirs = decodeSm2Signature(bytesOfText(read("theirs")));
    ASSERT_TRUE(theirs);
    EXPECT_TRUE(sm2Verify(pair.publicKey, *digest, *theirs));

    write("cipher", textOf(encodeSm2Ciphertext(*sm2Encrypt(pair.publicKey, bytesOfText(message)))));
    ASSERT_TRUE(openssl("pkeyutl -decrypt -inkey key.pem -in cipher -out plain"));
    EXPECT_EQ(read("plain"), message);
    ASSERT_TRUE(openssl("pkeyutl -encrypt -pubin -inkey public.pem -in message -out theirs"));
    const auto cipher = decodeSm2Ciphertext(bytesOfText(read("theirs")));
    ASSERT_TRUE(cipher);
    EXPECT_EQ(textOf(*sm2Decrypt(pair.d, *cipher)), message);
}

TEST_F(OpenSsl, Sm2TraditionalKey) {
    ASSERT_TRUE(openssl("ecparam -name SM2 -genkey -out key.pem"));
    EXPECT_TRUE(decodePrivateKeyPem(read("key.pem"))) << read("key.pem");
}

TEST_F(OpenSsl, Rsa) {
    ASSERT_TRUE(openssl("genrsa -out key.pem 2048"));
    ASSERT_TRUE(openssl("rsa -in key.pem -traditional -out traditional.pem"));
    const auto key = decodePrivateKeyPem(read("key.pem"));
    const auto traditional = decodePrivateKeyPem(read("traditional.pem"));
    ASSERT_TRUE(key && traditional);
    const auto &rsa = std::get<RsaPrivateKey>(*key);
    EXPECT_EQ(encodePkcs1(rsa), encodePkcs1(std::get<RsaPrivateKey>(*traditional)));

    write("public.pem", encodePem("PUBLIC KEY", encodePublicKey(rsa.publicKey())));
    write("own.pem", encodePem("RSA PRIVATE KEY", encodePkcs1(*generateRsaKey(1024))));
    EXPECT_TRUE(openssl("rsa -in own.pem -check -noout"));
    write("message", message);
    const Bytes hash = digestOf(DigestAlgorithm::sha256, bytesOfText(message));
    write("signature", textOf(*rsaSign(rsa, sha256DigestInfo(hash))));
    EXPECT_TRUE(openssl("dgst -sha256 -verify public.pem -signature signature message"));
    write("cipher", textOf(*rsaEncrypt(rsa.publicKey(), bytesOfText(message))));
    ASSERT_TRUE(openssl("pkeyutl -decrypt -inkey key.pem -in cipher -out plain"));
    EXPECT_EQ(read("plain"), message);
    ASSERT_TRUE(openssl("pkeyutl -encrypt -pubin -inkey public.pem -in message -out theirs"));
    EXPECT_EQ(textOf(*rsaDecrypt(rsa, bytesOfText(read("theirs")))), message);
}

TEST_F(OpenSsl, OtherKeysAreRefused) {
    ASSERT_TRUE(openssl("genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out p256.pem"));
    EXPECT_FALSE(decodePrivateKeyPem(read("p256.pem")));
    ASSERT_TRUE(openssl("genrsa -aes128 -traditional -passout pass:secret -out locked.pem 1024"));
    EXPECT_FALSE(decodePrivateKeyPem(read("locked.pem")));
}

} // namespace tembra::crypto
