// The published examples of GB/T 32918; those of SM3 and SM4 go through the whole provider.
#include <gtest/gtest.h>

#include "crypto/hex.h"
#include "crypto/sm2_encrypt.h"
#include "crypto/sm2_sign.h"
#include "crypto_text.h"

namespace tembra::crypto {

namespace {

Sm2Number number(std::string_view hex) {
    return *toSm2Number(*fromHex(hex));
}

// The key pair of GB/T 32918.5, on the recommended curve.
Sm2KeyPair examplePair() {
    const Bytes d = *fromHex("3945208F7B2144B13F36E38AC6D39F95889393692860B51A42FB81EF4DF7C5B8");
    return {{number("09F9DF311E5421A150DD7D161E4BC5C672179FAD1833FC076BB08FF356F35020"),
             number("CCEA490CE26775A52DC6EA718CC1AA600AED05FBF35E084A6632F6072DA9AD13")},
            {d.begin(), d.end()}};
}

} // namespace

TEST(Vectors, Sm2Keys) {
    const Sm2KeyPair pair = examplePair();
    EXPECT_EQ(sm2PublicKeyOf(pair.d), pair.publicKey);
    EXPECT_TRUE(isConsistent(pair));
    EXPECT_TRUE(isOnSm2Curve(pair.publicKey));

    const auto fromOrder = [](int offset) {
        Sm2Number d = number("FFFFFFFEFFFFFFFFFFFFFFFFFFFFFFFF7203DF6B21C6052B53BBF40939D54123");
        d[31] = static_cast<std::uint8_t>(d[31] + offset);
        return sm2PublicKeyOf(d);
    };
    EXPECT_FALSE(fromOrder(0));
    EXPECT_FALSE(fromOrder(-1));
    EXPECT_TRUE(fromOrder(-2));
    EXPECT_FALSE(sm2PublicKeyOf(Sm2Number{}));
    EXPECT_FALSE(sm2PublicKeyOf(Bytes(31, 1)));

    // x + p satisfies the equation too, but is no element of the field.
    Sm2PublicKey off = pair.publicKey;
    off.y[31] ^= 1;
    EXPECT_FALSE(isOnSm2Curve(off));
    EXPECT_FALSE(isOnSm2Curve(Sm2PublicKey{}));
    off.x.fill(0xFF);
    EXPECT_FALSE(isOnSm2Curve(off));
}

TEST(Vectors, Sm2Signature) {
    const Sm2KeyPair pair = examplePair();
    const Sm2Signature signature = {
        number("F5A03B0648D2C4630EEAC513E1BB81A15944DA3827D5B74143AC7EACEEE720B3"),
        number("B1B6AA29DF212FD8763182BC0D421CA1BB9038FD1F7F42D4840B69C485BBC1AA")};
    EXPECT_EQ(toHex(*sm2SignerDigest(pair.publicKey)),
              "b2e14c5c79c6df5b85f4fe7ed8db7a262b9da7e07ccb0ea9f4747b8ccda8a4f3");
    const auto digest = sm2MessageDigest(pair.publicKey, bytesOfText("message digest")).value();
    EXPECT_EQ(toHex(digest), "f0b43e94ba45accaace692ed534382eb17e6ab5a19ce7b31f4486fdfc0d28640");
    EXPECT_TRUE(sm2Verify(pair.publicKey, digest, signature));

    const auto own = sm2Sign(pair, digest).value();
    EXPECT_NE(own, signature); // the random number differs
    EXPECT_TRUE(sm2Verify(pair.publicKey, digest, own));
    Sm2Signature changed = own;
    changed.s[5] ^= 1;
    EXPECT_FALSE(sm2Verify(pair.publicKey, digest, changed));
    EXPECT_FALSE(sm2Verify(pair.publicKey, digest, Sm2Signature{}));
    EXPECT_FALSE(sm2Verify(generateSm2KeyPair().publicKey, digest, own));
    EXPECT_FALSE(sm2Sign(pair, Bytes(31)));
    EXPECT_FALSE(sm2SignerDigest(pair.publicKey, std::string(8192, 'x')));
}

TEST(Vectors, Sm2Encryption) {
    const Sm2KeyPair pair = examplePair();
    const Sm2Ciphertext cipher = {
        {number("04EBFC718E8D1798620432268E77FEB6415E2EDE0E073C0F4F640ECD2E149A73"),
         number("E858F9D81E5430A57B36DAAB8F950A3C64E6EE6A63094D99283AFF767E124DF0")},
        *fromHex("21886CA989CA9C7D58087307CA93092D651EFA"),
        number("59983C18F809E262923C53AEC295D30383B54E39D609D160AFCB1908D0BD8766")};
    EXPECT_EQ(textOf(sm2Decrypt(pair.d, cipher).value()), "encryption standard");

    Sm2Ciphertext broken = cipher;
    broken.c2[0] ^= 1;
    EXPECT_FALSE(sm2Decrypt(pair.d, broken));
    broken = cipher;
    broken.c1.y[31] ^= 1;
    EXPECT_FALSE(sm2Decrypt(pair.d, broken));
    EXPECT_FALSE(sm2Decrypt(generateSm2KeyPair().d, cipher));

    // One byte in particular: every 256th key stream is the zero that must not be used.
    for (const std::size_t length : {0U, 1U, 1U, 1U, 1U, 16U, 32U, 33U, 1000U}) {
        const Bytes message(length, 0);
        const auto back = sm2Decrypt(pair.d, sm2Encrypt(pair.publicKey, message).value()).value();
        EXPECT_EQ(Bytes(back.begin(), back.end()), message);
    }
}

} // namespace tembra::crypto
