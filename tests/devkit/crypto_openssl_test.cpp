// What the kit makes, OpenSSL reads, and the other way round, where no test of the tool shows it.
#include <gtest/gtest.h>

#include <cstdlib>

#include "crypto/pem.h"
#include "crypto/private_key.h"
#include "crypto/public_key.h"
#include "crypto/sm2_encoding.h"
#include "crypto_text.h"
#include "temporary_directory.h"

namespace tembra::crypto {

namespace {

constexpr const char *message = "signed by one, verified by the other";

// A directory of its own with OpenSSL run in it.
class OpenSsl : public testing::Test {
protected:
    OpenSsl() { write("message", message); }

    void openssl(const std::string &arguments) const {
        const std::string command =
            "cd '" + directory_.path().string() + "' && openssl " + arguments + " >log 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << arguments << "\n" << read("log");
    }
    void write(const char *name, std::string_view content) const {
        test::writeFile(directory_.path() / name, std::string(content));
    }
    std::string read(const char *name) const { return test::readFile(directory_.path() / name); }

private:
    test::TemporaryDirectory directory_;
};

} // namespace

TEST_F(OpenSsl, Sm2) {
    openssl("genpkey -algorithm EC -pkeyopt ec_paramgen_curve:SM2 -out key.pem");
    const auto pair = std::get<Sm2KeyPair>(decodePrivateKeyPem(read("key.pem")).value());
    const auto digest = *sm2MessageDigest(pair.publicKey, bytesOfText(message));
    const std::string options = " -rawin -digest sm3 -pkeyopt distid:1234567812345678 -in message ";

    write("public.pem", encodePem("PUBLIC KEY", encodePublicKey(pair.publicKey)));
    write("signature", textOf(encodeSm2Signature(*sm2Sign(pair, digest))));
    openssl("pkeyutl -verify -pubin -inkey public.pem -sigfile signature" + options);
    openssl("pkeyutl -sign -inkey key.pem -out theirs" + options);
    EXPECT_TRUE(
        sm2Verify(pair.publicKey, digest, decodeSm2Signature(bytesOfText(read("theirs"))).value()));

    write("cipher", textOf(encodeSm2Ciphertext(*sm2Encrypt(pair.publicKey, bytesOfText(message)))));
    openssl("pkeyutl -decrypt -inkey key.pem -in cipher -out plain");
    EXPECT_EQ(read("plain"), message);
}

TEST_F(OpenSsl, OtherCurvesAreRefused) {
    openssl("genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out p256.pem");
    EXPECT_FALSE(decodePrivateKeyPem(read("p256.pem")));
}

} // namespace tembra::crypto
