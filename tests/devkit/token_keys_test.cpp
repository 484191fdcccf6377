// Key pairs: what they sign and decrypt, and what a container takes in.
#include "token_fixture.h"

#include "crypto/private_key.h"
#include "crypto/sm2_encrypt.h"
#include "crypto/sm2_sign.h"
#include "crypto/sm4.h"

#include <algorithm>
#include <cstddef>

namespace tembra::test {
namespace {

using crypto::Bytes;
using crypto::ByteView;

void alignRight(std::span<BYTE> field, ByteView number) {
    std::fill(field.begin(), field.end(), BYTE{0});
    std::copy_backward(number.begin(), number.end(), field.end());
}

crypto::RsaPublicKey publicKey(const RSAPUBLICKEYBLOB &blob) {
    const ByteView n = crypto::withoutLeadingZeros(blob.Modulus);
    const ByteView e = crypto::withoutLeadingZeros(blob.PublicExponent);
    return {{n.begin(), n.end()}, {e.begin(), e.end()}};
}
using tembra::test::publicKey;

// The plaintext to the key; the record runs on past its end.
Bytes cipherBlob(const crypto::Sm2PublicKey &key, ByteView plain) {
    const crypto::Sm2Ciphertext cipher = *crypto::sm2Encrypt(key, plain);
    Bytes block(offsetof(ECCCIPHERBLOB, Cipher) + cipher.c2.size());
    auto *blob = reinterpret_cast<ECCCIPHERBLOB *>(block.data());
    alignRight(blob->XCoordinate, cipher.c1.x);
    alignRight(blob->YCoordinate, cipher.c1.y);
    std::copy(cipher.c3.begin(), cipher.c3.end(), blob->HASH);
    blob->CipherLen = static_cast<ULONG>(cipher.c2.size());
    std::copy(cipher.c2.begin(), cipher.c2.end(), block.begin() + offsetof(ECCCIPHERBLOB, Cipher));
    return block;
}

class TokenKeys : public TokenTest {
protected:
    TokenKeys() { login(); }

    HCONTAINER createRsa(ULONG bits, RSAPUBLICKEYBLOB &blob) {
        const HCONTAINER container = create("rsa " + std::to_string(bits));
        EXPECT_EQ(SAR_OK, SKF_GenRSAKeyPair(container, bits, &blob));
        return container;
    }
    static ULONG decryptSm2(HCONTAINER container, BOOL signature, Bytes block, Bytes &out) {
        auto length = static_cast<ULONG>(out.size());
        return SKF_ECCDecrypt(container, signature, reinterpret_cast<ECCCIPHERBLOB *>(block.data()),
                              out.data(), &length);
    }
};

TEST_F(TokenKeys, AContainerHoldsOneKindOfKey) {
    ECCPUBLICKEYBLOB sm2 = {};
    RSAPUBLICKEYBLOB rsa = {};
    const HCONTAINER container = create("sm2");
    EXPECT_NE(SAR_OK, SKF_GenRSAKeyPair(container, 1536, &rsa));
    EXPECT_EQ(SAR_NOTSUPPORTYETERR, SKF_GenECCKeyPair(container, SGD_SM2_3, &sm2));
    EXPECT_EQ(SAR_OK, SKF_GenECCKeyPair(container, SGD_SM2_1, &sm2));
    EXPECT_NE(SAR_OK, SKF_GenRSAKeyPair(container, 1024, &rsa));
    Bytes data(128);
    ULONG length = 128;
    EXPECT_EQ(SAR_KEYNOTFOUNTERR,
              SKF_RSASignData(container, data.data(), 32, data.data(), &length));
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, SKF_ExportPublicKey(container, 0, data.data(), &length));
}

TEST_F(TokenKeys, SignaturesVerifyAndLengthsAreChecked) {
    ECCPUBLICKEYBLOB sm2 = {};
    RSAPUBLICKEYBLOB rsa = {};
    ECCSIGNATUREBLOB blob = {};
    Bytes data(118, 0x5A);
    HCONTAINER container = createSm2("sm2", &sm2);
    EXPECT_EQ(SAR_INDATALENERR, SKF_ECCSignData(container, data.data(), 31, &blob));
    EXPECT_EQ(SAR_INDATALENERR, SKF_ECCSignData(container, data.data(), 33, &blob));
    ASSERT_EQ(SAR_OK, SKF_ECCSignData(container, data.data(), 32, &blob));
    EXPECT_TRUE(crypto::sm2Verify(publicKey(sm2), ByteView(data).first(32),
                                  {*crypto::toSm2Number(blob.r), *crypto::toSm2Number(blob.s)}));
    container = createRsa(1024, rsa);
    Bytes signature(128);
    ULONG length = 128;
    const auto sign = [&](ULONG size, BYTE *to) {
        return SKF_RSASignData(container, data.data(), size, to, &length);
    };
    EXPECT_EQ(SAR_INDATALENERR, sign(118, signature.data()));
    length = 127;
    EXPECT_EQ(SAR_BUFFER_TOO_SMALL, sign(117, signature.data()));
    EXPECT_EQ(128U, length);
    for (const ULONG size : {0U, 117U}) {
        EXPECT_EQ(SAR_OK, sign(size, nullptr));
        EXPECT_EQ(SAR_OK, sign(size, signature.data()));
        EXPECT_TRUE(crypto::rsaVerify(publicKey(rsa), ByteView(data).first(size), signature));
    }
}

TEST_F(TokenKeys, Sm2CiphertextsDecrypt) {
    ECCPUBLICKEYBLOB made = {};
    const HCONTAINER container = createSm2("sm2", &made);
    const Bytes plain(100, 0x42);
    const Bytes good = cipherBlob(publicKey(made), plain);
    Bytes out(100);
    EXPECT_EQ(SAR_OK, decryptSm2(container, 1, good, out));
    EXPECT_EQ(plain, out);
    Bytes tooSmall(99);
    EXPECT_EQ(SAR_BUFFER_TOO_SMALL, decryptSm2(container, 1, good, tooSmall));
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, decryptSm2(container, 0, good, out));
    for (const std::size_t at : {std::size_t{0}, std::size_t{63}, std::size_t{127},
                                 std::size_t{128}, offsetof(ECCCIPHERBLOB, Cipher)}) {
        Bytes bad = good;
        bad[at] ^= 1;
        EXPECT_EQ(SAR_INDATAERR, decryptSm2(container, 1, bad, out)) << at;
    }
    EXPECT_EQ(SAR_OK, SKF_ClearSecureState(application));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, decryptSm2(container, 1, good, out));
}

// What a key management centre makes for a container's signature key.
ENVELOPEDKEYBLOB envelope(const crypto::Sm2PublicKey &key, ByteView plain) {
    ENVELOPEDKEYBLOB blob = {};
    blob.Version = 1;
    blob.ulSymmAlgID = SGD_SMS4_ECB;
    blob.ulBits = 256;
    alignRight(blob.cbEncryptedPriKey,
               *crypto::sm4Encrypt(crypto::Sm4Mode::ecb, crypto::Sm4Padding::none, Bytes(16, 0x11),
                                   {}, plain));
    blob.PubKey.BitLen = 256;
    alignRight(blob.PubKey.XCoordinate, key.x);
    alignRight(blob.PubKey.YCoordinate, key.y);
    return blob;
}

TEST_F(TokenKeys, EnvelopedSm2KeysComeInOnlyWhenAllOfThemIsRight) {
    ECCPUBLICKEYBLOB signatureBlob = {};
    const HCONTAINER container = createSm2("sm2", &signatureBlob);
    const auto signatureKey = publicKey(signatureBlob);
    const auto offer = [](HCONTAINER to, const ENVELOPEDKEYBLOB &blob, const Bytes &cipher) {
        const auto *head = reinterpret_cast<const BYTE *>(&blob);
        Bytes block(head, head + offsetof(ENVELOPEDKEYBLOB, ECCCipherBlob));
        block.insert(block.end(), cipher.begin(), cipher.end());
        return SKF_ImportECCKeyPair(to, reinterpret_cast<ENVELOPEDKEYBLOB *>(block.data()));
    };
    const auto pair = crypto::generateSm2KeyPair();
    const auto stranger = crypto::generateSm2KeyPair().publicKey;
    Bytes record(48, 0x0C); // d in the form that some centres give it
    std::fill_n(record.begin(), 4, BYTE{0});
    record[1] = 1;
    std::copy(pair.d.begin(), pair.d.end(), record.begin() + 4);
    Bytes badFilling = record;
    badFilling[47] = 0;
    const auto good = envelope(pair.publicKey, pair.d);
    auto otherAlgorithm = good, noPoint = good, damaged = good;
    otherAlgorithm.ulSymmAlgID = SGD_SM1_ECB;
    noPoint.PubKey.XCoordinate[63] ^= 1;
    damaged.cbEncryptedPriKey[40] ^= 1;
    const Bytes sealed = cipherBlob(signatureKey, Bytes(16, 0x11));
    const struct {
        const char *what;
        ENVELOPEDKEYBLOB blob;
        Bytes key;
        ULONG result;
    } offers[] = {
        {"cipher", otherAlgorithm, sealed, SAR_NOTSUPPORTYETERR},
        {"public key of another pair", envelope(stranger, pair.d), sealed, SAR_INDATAERR},
        {"no point", noPoint, sealed, SAR_INDATAERR},
        {"filling", envelope(pair.publicKey, badFilling), sealed, SAR_INDATAERR},
        {"private key", damaged, sealed, SAR_INDATAERR},
        {"other key", good, cipherBlob(signatureKey, Bytes(16, 0x12)), SAR_INDATAERR},
        {"short key", good, cipherBlob(signatureKey, Bytes(15, 0x11)), SAR_INDATALENERR},
        {"made for another", good, cipherBlob(stranger, Bytes(16, 0x11)), SAR_INDATAERR},
        {"d alone", good, sealed, SAR_OK},
        {"d in a record", envelope(pair.publicKey, record), sealed, SAR_OK},
    };
    for (const auto &row : offers) {
        EXPECT_EQ(row.result, offer(container, row.blob, row.key)) << row.what;
    }
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, offer(create("keyless"), good, sealed));
    ECCPUBLICKEYBLOB imported = {};
    ULONG length = sizeof imported;
    ASSERT_EQ(SAR_OK,
              SKF_ExportPublicKey(container, 0, reinterpret_cast<BYTE *>(&imported), &length));
    EXPECT_EQ(pair.publicKey, publicKey(imported));
    const Bytes plain(5, 9);
    Bytes out(5);
    EXPECT_EQ(SAR_OK, decryptSm2(container, 0, cipherBlob(pair.publicKey, plain), out));
    EXPECT_EQ(plain, out);
}

TEST_F(TokenKeys, EnvelopedRsaKeysComeInOnlyWhenAllOfThemIsRight) {
    RSAPUBLICKEYBLOB signatureKey = {};
    const HCONTAINER container = createRsa(1024, signatureKey);
    const auto pair = *crypto::generateRsaKey(1024);
    const Bytes key(16, 0x22);
    const auto encrypted = [&](const crypto::RsaPrivateKey &inside) {
        return *crypto::sm4Encrypt(crypto::Sm4Mode::ecb, crypto::Sm4Padding::pkcs7, key, {},
                                   crypto::encodePkcs1(inside));
    };
    const auto wrapped = [&](ByteView inside) {
        return *crypto::rsaEncrypt(publicKey(signatureKey), inside);
    };
    auto inconsistent = pair;
    inconsistent.d[5] ^= 1;
    Bytes truncated = encrypted(pair);
    truncated.pop_back();
    struct {
        const char *what;
        ULONG algorithm;
        Bytes wrappedKey;
        Bytes encryptedKey;
        ULONG result;
    } offers[] = {
        {"cipher", SGD_SSF33_ECB, wrapped(key), encrypted(pair), SAR_NOTSUPPORTYETERR},
        {"wrapping", SGD_SMS4_ECB, Bytes(128, 1), encrypted(pair), SAR_INDATAERR},
        {"wrapping cut", SGD_SMS4_ECB, Bytes(127, 1), encrypted(pair), SAR_INDATALENERR},
        {"key length", SGD_SMS4_ECB, wrapped(Bytes(8, 0x22)), encrypted(pair), SAR_INDATAERR},
        {"key", SGD_SMS4_ECB, wrapped(Bytes(16, 0x23)), encrypted(pair), SAR_INDATAERR},
        {"cut", SGD_SMS4_ECB, wrapped(key), truncated, SAR_INDATALENERR},
        {"numbers", SGD_SMS4_ECB, wrapped(key), encrypted(inconsistent), SAR_INDATAERR},
        {"right", SGD_SMS4_ECB, wrapped(key), encrypted(pair), SAR_OK},
    };
    for (auto &row : offers) {
        EXPECT_EQ(row.result, SKF_ImportRSAKeyPair(container, row.algorithm, row.wrappedKey.data(),
                                                   static_cast<ULONG>(row.wrappedKey.size()),
                                                   row.encryptedKey.data(),
                                                   static_cast<ULONG>(row.encryptedKey.size())))
            << row.what;
    }
    Bytes cipher = *crypto::rsaEncrypt(pair.publicKey(), Bytes(20, 3));
    Bytes out(128);
    ULONG length = 128;
    const auto decrypt = [&](BOOL signature, ULONG size) {
        return SKF_RSADecrypt(container, signature, cipher.data(), size, out.data(), &length);
    };
    EXPECT_EQ(SAR_DECRYPTPADERR, decrypt(1, 128));
    EXPECT_EQ(SAR_INDATALENERR, decrypt(0, 127));
    EXPECT_EQ(SAR_OK, decrypt(0, 128));
    EXPECT_EQ(Bytes(20, 3), Bytes(out.begin(), out.begin() + length));
}

} // namespace
} // namespace tembra::test
