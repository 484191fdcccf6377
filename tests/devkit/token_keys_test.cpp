// Key pairs: generated, imported, used; certificates beside them.
#include "token_fixture.h"

#include "crypto/private_key.h"
#include "crypto/sm2_encrypt.h"
#include "crypto/sm2_sign.h"
#include "crypto/sm4.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

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

// The record runs on past its end.
Bytes cipherBlob(const crypto::Sm2Ciphertext &cipher) {
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
};

TEST_F(TokenKeys, Sm2SignaturesVerify) {
    ECCPUBLICKEYBLOB made = {};
    const HCONTAINER container = createSm2("sm2", &made);
    ECCPUBLICKEYBLOB exported = {};
    ULONG length = sizeof exported;
    EXPECT_EQ(SAR_OK,
              SKF_ExportPublicKey(container, 1, reinterpret_cast<BYTE *>(&exported), &length));
    EXPECT_EQ(0, std::memcmp(&made, &exported, sizeof made));
    Bytes digest(33, 7);
    ECCSIGNATUREBLOB blob = {};
    EXPECT_EQ(SAR_INDATALENERR, SKF_ECCSignData(container, digest.data(), 31, &blob));
    EXPECT_EQ(SAR_INDATALENERR, SKF_ECCSignData(container, digest.data(), 33, &blob));
    ASSERT_EQ(SAR_OK, SKF_ECCSignData(container, digest.data(), 32, &blob));
    const crypto::Sm2Signature signature = {*crypto::toSm2Number(blob.r),
                                            *crypto::toSm2Number(blob.s)};
    EXPECT_TRUE(crypto::sm2Verify(publicKey(made), ByteView(digest).first(32), signature));
    EXPECT_EQ(SAR_KEYNOTFOUNTERR,
              SKF_RSASignData(container, digest.data(), 32, digest.data(), &length));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
}

TEST_F(TokenKeys, RsaSignaturesVerify) {
    for (const ULONG bits : {1024U, 2048U}) {
        SCOPED_TRACE(bits);
        RSAPUBLICKEYBLOB made = {};
        const HCONTAINER container = createRsa(std::to_string(bits).c_str(), bits, &made);
        EXPECT_EQ(bits, made.BitLen);
        const ULONG size = bits / 8;
        Bytes data(size - 10, 0x5A);
        Bytes signature(size);
        ULONG length = size;
        EXPECT_EQ(SAR_INDATALENERR,
                  SKF_RSASignData(container, data.data(), size - 10, signature.data(), &length));
        length = size - 1;
        EXPECT_EQ(SAR_BUFFER_TOO_SMALL,
                  SKF_RSASignData(container, data.data(), size - 11, signature.data(), &length));
        EXPECT_EQ(size, length);
        EXPECT_EQ(SAR_OK, SKF_RSASignData(container, data.data(), size - 11, nullptr, &length));
        for (const ULONG dataLength : {0U, 51U, size - 11}) {
            ASSERT_EQ(SAR_OK, SKF_RSASignData(container, data.data(), dataLength, signature.data(),
                                              &length));
            EXPECT_TRUE(
                crypto::rsaVerify(publicKey(made), ByteView(data).first(dataLength), signature));
        }
        EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
    }
}

TEST_F(TokenKeys, AContainerHoldsOneKindOfKeyAndSizesThatExist) {
    const HCONTAINER empty = create("empty");
    ULONG type = 99;
    EXPECT_EQ(SAR_OK, SKF_GetContainerType(empty, &type));
    EXPECT_EQ(CONTAINER_TYPE_EMPTY, type);
    RSAPUBLICKEYBLOB rsa = {};
    ECCPUBLICKEYBLOB sm2 = {};
    EXPECT_NE(SAR_OK, SKF_GenRSAKeyPair(empty, 1536, &rsa));
    EXPECT_EQ(SAR_NOTSUPPORTYETERR, SKF_GenECCKeyPair(empty, SGD_SM2_3, &sm2));
    EXPECT_EQ(SAR_OK, SKF_GenECCKeyPair(empty, SGD_SM2_1, &sm2));
    EXPECT_EQ(SAR_OK, SKF_GetContainerType(empty, &type));
    EXPECT_EQ(CONTAINER_TYPE_ECC, type);
    EXPECT_NE(SAR_OK, SKF_GenRSAKeyPair(empty, 1024, &rsa));
    ULONG length = sizeof sm2;
    EXPECT_EQ(SAR_KEYNOTFOUNTERR,
              SKF_ExportPublicKey(empty, 0, reinterpret_cast<BYTE *>(&sm2), &length));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(empty));
}

TEST_F(TokenKeys, Sm2CiphertextsDecrypt) {
    ECCPUBLICKEYBLOB made = {};
    const HCONTAINER container = createSm2("sm2", &made);
    const Bytes plain(100, 0x42);
    Bytes good = cipherBlob(*crypto::sm2Encrypt(publicKey(made), plain));
    const auto decrypt = [&](Bytes block, BOOL signature, ULONG capacity) {
        Bytes out(capacity);
        ULONG length = capacity;
        const ULONG result =
            SKF_ECCDecrypt(container, signature, reinterpret_cast<ECCCIPHERBLOB *>(block.data()),
                           out.data(), &length);
        if (result == SAR_OK) {
            out.resize(length);
            EXPECT_EQ(plain, out);
        }
        return result;
    };
    EXPECT_EQ(SAR_OK, decrypt(good, 1, 100));
    EXPECT_EQ(SAR_BUFFER_TOO_SMALL, decrypt(good, 1, 99));
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, decrypt(good, 0, 100));
    for (const std::size_t at : {std::size_t{0}, std::size_t{63}, std::size_t{127},
                                 std::size_t{128}, offsetof(ECCCIPHERBLOB, Cipher)}) {
        Bytes bad = good;
        bad[at] ^= 1;
        EXPECT_EQ(SAR_INDATAERR, decrypt(bad, 1, 100)) << at;
    }
    EXPECT_EQ(SAR_OK, SKF_ClearSecureState(application));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, decrypt(good, 1, 100));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
}

// What a key management centre makes for a container's signature key.
ENVELOPEDKEYBLOB envelope(const crypto::Sm2KeyPair &pair, ByteView plain) {
    const Bytes key(16, 0x11);
    ENVELOPEDKEYBLOB blob = {};
    blob.Version = 1;
    blob.ulSymmAlgID = SGD_SMS4_ECB;
    blob.ulBits = 256;
    alignRight(blob.cbEncryptedPriKey,
               *crypto::sm4Encrypt(crypto::Sm4Mode::ecb, crypto::Sm4Padding::none, key, {}, plain));
    blob.PubKey.BitLen = 256;
    alignRight(blob.PubKey.XCoordinate, pair.publicKey.x);
    alignRight(blob.PubKey.YCoordinate, pair.publicKey.y);
    return blob;
}

Bytes sealed(ENVELOPEDKEYBLOB blob, const ECCPUBLICKEYBLOB &signatureKey, ByteView key) {
    const Bytes cipher = cipherBlob(*crypto::sm2Encrypt(publicKey(signatureKey), key));
    const auto *head = reinterpret_cast<const BYTE *>(&blob);
    constexpr std::size_t headSize = offsetof(ENVELOPEDKEYBLOB, ECCCipherBlob);
    Bytes block(headSize + cipher.size());
    std::copy_n(head, headSize, block.begin());
    std::copy_backward(cipher.begin(), cipher.end(), block.end());
    return block;
}

TEST_F(TokenKeys, EnvelopedSm2KeysComeInOnlyWhenAllOfThemIsRight) {
    ECCPUBLICKEYBLOB signatureKey = {};
    const HCONTAINER container = createSm2("sm2", &signatureKey);
    const auto pair = crypto::generateSm2KeyPair();
    const Bytes key(16, 0x11);
    Bytes record(48, 0x0C);
    std::fill_n(record.begin(), 4, BYTE{0});
    record[1] = 1;
    std::copy(pair.d.begin(), pair.d.end(), record.begin() + 4);
    const auto offer = [&](HCONTAINER to, Bytes block) {
        return SKF_ImportECCKeyPair(to, reinterpret_cast<ENVELOPEDKEYBLOB *>(block.data()));
    };
    const auto good = envelope(pair, pair.d);
    auto otherAlgorithm = good;
    otherAlgorithm.ulSymmAlgID = SGD_SM1_ECB;
    auto otherPublicKey = good;
    const auto stranger = crypto::generateSm2KeyPair();
    alignRight(otherPublicKey.PubKey.XCoordinate, stranger.publicKey.x);
    alignRight(otherPublicKey.PubKey.YCoordinate, stranger.publicKey.y);
    auto noPoint = good;
    noPoint.PubKey.XCoordinate[63] ^= 1;
    auto badFilling = record;
    badFilling[47] = 0;
    auto damaged = good;
    damaged.cbEncryptedPriKey[40] ^= 1;
    const struct {
        const char *what;
        Bytes block;
        ULONG result;
    } offers[] = {
        {"cipher", sealed(otherAlgorithm, signatureKey, key), SAR_NOTSUPPORTYETERR},
        {"public key of another pair", sealed(otherPublicKey, signatureKey, key), SAR_INDATAERR},
        {"no point", sealed(noPoint, signatureKey, key), SAR_INDATAERR},
        {"filling", sealed(envelope(pair, badFilling), signatureKey, key), SAR_INDATAERR},
        {"private key", sealed(damaged, signatureKey, key), SAR_INDATAERR},
        {"symmetric key", sealed(good, signatureKey, Bytes(16, 0x12)), SAR_INDATAERR},
        {"short symmetric key", sealed(good, signatureKey, Bytes(15, 0x11)), SAR_INDATALENERR},
        {"made for another", sealed(good, good.PubKey, key), SAR_INDATAERR},
        {"d alone", sealed(good, signatureKey, key), SAR_OK},
        {"d in a record", sealed(envelope(pair, record), signatureKey, key), SAR_OK},
    };
    for (const auto &row : offers) {
        EXPECT_EQ(row.result, offer(container, row.block)) << row.what;
    }
    ECCPUBLICKEYBLOB imported = {};
    ULONG length = sizeof imported;
    ASSERT_EQ(SAR_OK,
              SKF_ExportPublicKey(container, 0, reinterpret_cast<BYTE *>(&imported), &length));
    EXPECT_EQ(pair.publicKey, publicKey(imported));
    const Bytes plain(5, 9);
    Bytes cipher = cipherBlob(*crypto::sm2Encrypt(pair.publicKey, plain));
    Bytes out(5);
    length = 5;
    EXPECT_EQ(SAR_OK, SKF_ECCDecrypt(container, 0, reinterpret_cast<ECCCIPHERBLOB *>(cipher.data()),
                                     out.data(), &length));
    EXPECT_EQ(plain, out);
    const HCONTAINER keyless = create("keyless");
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, offer(keyless, sealed(good, signatureKey, key)));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(keyless));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
}

TEST_F(TokenKeys, EnvelopedRsaKeysComeInOnlyWhenAllOfThemIsRight) {
    RSAPUBLICKEYBLOB signatureKey = {};
    const HCONTAINER container = createRsa("rsa", 1024, &signatureKey);
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
    const struct {
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
    for (const auto &row : offers) {
        Bytes wrappedKey = row.wrappedKey;
        Bytes encryptedKey = row.encryptedKey;
        EXPECT_EQ(row.result,
                  SKF_ImportRSAKeyPair(container, row.algorithm, wrappedKey.data(),
                                       static_cast<ULONG>(wrappedKey.size()), encryptedKey.data(),
                                       static_cast<ULONG>(encryptedKey.size())))
            << row.what;
    }
    const Bytes plain(20, 3);
    Bytes cipher = *crypto::rsaEncrypt(pair.publicKey(), plain);
    Bytes out(20);
    ULONG length = 19;
    EXPECT_EQ(SAR_BUFFER_TOO_SMALL,
              SKF_RSADecrypt(container, 0, cipher.data(), 128, out.data(), &length));
    EXPECT_EQ(20U, length);
    EXPECT_EQ(SAR_OK, SKF_RSADecrypt(container, 0, cipher.data(), 128, out.data(), &length));
    EXPECT_EQ(plain, out);
    EXPECT_EQ(SAR_DECRYPTPADERR,
              SKF_RSADecrypt(container, 1, cipher.data(), 128, out.data(), &length));
    EXPECT_EQ(SAR_INDATALENERR,
              SKF_RSADecrypt(container, 0, cipher.data(), 127, out.data(), &length));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
}

TEST_F(TokenKeys, CertificatesStandBesideTheirKeysAndLast) {
    HCONTAINER container = createSm2("sm2");
    Bytes certificate(700, 0x30);
    const ULONG before = freeSpace();
    EXPECT_EQ(SAR_OK, SKF_ImportCertificate(container, 1, certificate.data(), 700));
    EXPECT_EQ(before - 700, freeSpace());
    EXPECT_EQ(SAR_OK, SKF_ClearSecureState(application));
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, SKF_ImportCertificate(container, 1, certificate.data(), 700));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
    close();
    open();
    ASSERT_EQ(SAR_OK, SKF_OpenContainer(application, text("sm2"), &container));
    Bytes read(700);
    ULONG length = 699;
    EXPECT_EQ(SAR_BUFFER_TOO_SMALL, SKF_ExportCertificate(container, 1, read.data(), &length));
    EXPECT_EQ(SAR_OK, SKF_ExportCertificate(container, 1, read.data(), &length));
    EXPECT_EQ(certificate, read);
    EXPECT_EQ(SAR_CERTNOTFOUNTERR, SKF_ExportCertificate(container, 0, read.data(), &length));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
}

} // namespace
} // namespace tembra::test
