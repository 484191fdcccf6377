// Enveloped blobs on their way into the token: what it is given, what its answers mean, and the
// records that follow.
#include "import_test.h"

#include <cstring>

namespace tembra::test {
namespace {

class ImportEnveloped : public ImportTest {
protected:
    // The export that DeviceGetPublicKeyFromKeypair gives of the encryption pair, if there is one.
    Bytes cachedKey() {
        SPI_KEYPAIR_HANDLE handle = nullptr;
        if (DeviceFindKeypair(m_device, ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, "c", &handle) != 1)
            return {};
        const Bytes bytes = exportedKey(handle);
        DeviceFreeKeypair(handle);
        return bytes;
    }
};

bool hasLineBeginning(const std::string &text) {
    const Lines lines = trace().texts();
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string &line) { return line.rfind(text, 0) == 0; });
}

TEST_F(ImportEnveloped, Sm2FillsTheEnvelopeWhateverTheSizes) {
    insert({ecc("c", true, false)});
    trace().setLevel("5");
    for (const std::size_t cipherSize : {0u, 16u, 300u}) {
        for (const std::size_t keySize : {32u, 48u, 64u}) {
            SCOPED_TRACE(std::to_string(cipherSize) + ", " + std::to_string(keySize));
            Sm2Envelope envelope;
            envelope.c2.assign(cipherSize, 0xC2);
            envelope.privateKey.assign(keySize, 0xD0);
            Bytes head, cipher;
            script().SKF_ImportECCKeyPair.run([&](HCONTAINER container, ENVELOPEDKEYBLOB *blob) {
                const auto *bytes = reinterpret_cast<const unsigned char *>(blob);
                head.assign(bytes, bytes + offsetof(ENVELOPEDKEYBLOB, ECCCipherBlob));
                cipher.assign(bytes + head.size(), bytes + 372 + blob->ECCCipherBlob.CipherLen);
                return script().SKF_ImportECCKeyPair.usual(container, blob);
            });
            ASSERT_EQ(import(envelope.blob()), 1);

            ENVELOPEDKEYBLOB expected{};
            expected.Version = 1;
            expected.ulSymmAlgID = SGD_SMS4_ECB;
            expected.ulBits = 256;
            std::memset(expected.cbEncryptedPriKey + 64 - keySize, 0xD0, keySize);
            expected.PubKey.BitLen = 256;
            std::memset(expected.PubKey.XCoordinate + 32, 0x2A, 32);
            std::memset(expected.PubKey.YCoordinate + 32, 0x2B, 32);
            EXPECT_EQ(std::memcmp(head.data(), &expected, head.size()), 0);
            ECCCIPHERBLOB wrapped{};
            std::memset(wrapped.XCoordinate + 32, 0x1A, 32);
            std::memset(wrapped.YCoordinate + 32, 0x1B, 32);
            std::memset(wrapped.HASH, 0x3C, 32);
            wrapped.CipherLen = static_cast<ULONG>(cipherSize);
            EXPECT_EQ(std::memcmp(cipher.data(), &wrapped, 164), 0);
            EXPECT_EQ(Bytes(cipher.begin() + 164, cipher.end()), envelope.c2);
            for (const std::string &dump :
                 {"sm2Cipher[length:" + std::to_string(cipherSize > 16 ? 372 + cipherSize : 388),
                  "keyblob[length:" + std::to_string(243 + cipherSize + keySize)})
                EXPECT_TRUE(hasLineBeginning(verbose("importSM2KeyPair", dump + "]: ")));
        }
    }
}

TEST_F(ImportEnveloped, AlgorithmsOfBothPayloads) {
    insert({ecc("c", true, false), rsa("r", 2048, true, false)});
    for (const auto &[host, skf] :
         {std::pair(0x03C00000u, 0x101u), {0x03000000u, 0x201u}, {0x04800000u, 0x401u}}) {
        Sm2Envelope sm2;
        sm2.algorithm = host;
        script().SKF_ImportECCKeyPair.run([skf = skf](HCONTAINER container,
                                                      ENVELOPEDKEYBLOB *blob) {
            return blob->ulSymmAlgID == skf ? script().SKF_ImportECCKeyPair.usual(container, blob)
                                            : SAR_NOTSUPPORTYETERR;
        });
        EXPECT_EQ(import(sm2.blob()), 1);
        RsaEnvelope rsa(2048);
        rsa.algorithm = host;
        ASSERT_EQ(import(rsa.blob(), "r"), 1);
        EXPECT_EQ(script().SKF_ImportRSAKeyPair.argument<1>(), skf);
        EXPECT_EQ(script().SKF_ImportRSAKeyPair.argument<3>(), 256u);
        EXPECT_EQ(script().SKF_ImportRSAKeyPair.argument<5>(), 608u);
    }
}

TEST_F(ImportEnveloped, SignatureKeyThatCannotBeCompared) {
    insert({ecc("c", true, false), ecc("unsigned", false, true), {"empty"}});
    EXPECT_EQ(import(Sm2Envelope().blob(), "unsigned"), 0);
    EXPECT_EQ(trace().failures(), errors("importSM2KeyPair", "hContainer->m_signPubKey == 0"));
    EXPECT_EQ(import(RsaEnvelope().blob(), "empty"), 0);
    EXPECT_EQ(trace().failures(), errors("importRSAKeyPair", "hContainer->m_signPubKey == 0"));
    // Coordinates of less than 32 bytes differ; of longer ones the first 32 bytes count.
    const struct {
        int xLen, yLen;
        const char *message;
    } cases[] = {{31, 32, "memcmp(x, &keyblob[pos], 32) != 0"},
                 {32, 31, "memcmp(y, &keyblob[pos], 32) != 0"},
                 {32, -1, "memcmp(y, &keyblob[pos], 32) != 0"},
                 {33, 32, nullptr},
                 {32, 64, nullptr}};
    for (const auto &row : cases) {
        script().OrvelPKICryptoDecodeECCPubKey.run([&row](auto key, auto size, auto curve, auto x,
                                                          int *xLen, auto y, int *yLen) {
            const int result =
                script().OrvelPKICryptoDecodeECCPubKey.usual(key, size, curve, x, xLen, y, yLen);
            *xLen = row.xLen;
            *yLen = row.yLen;
            return result;
        });
        EXPECT_EQ(import(Sm2Envelope().blob()), row.message == nullptr);
        EXPECT_EQ(trace().failures(), errors("importSM2KeyPair", row.message));
    }
}

TEST_F(ImportEnveloped, CachedKeyIsReplacedOnlyByTheNewOne) {
    insert({ecc("c", true, true)});
    const Bytes old = cachedKey();
    const std::size_t blocks = script().host.blocks.size();
    script().SKF_ExportPublicKey.answerAt(1, SAR_FAIL);
    EXPECT_EQ(import(Sm2Envelope().blob()), 0);
    EXPECT_EQ(cachedKey(), old);

    script().SKF_ExportPublicKey.run([](HCONTAINER container, BOOL sign, BYTE *blob, ULONG *size) {
        const ULONG result = script().SKF_ExportPublicKey.usual(container, sign, blob, size);
        reinterpret_cast<ECCPUBLICKEYBLOB *>(blob)->XCoordinate[63] = 0x99;
        return result;
    });
    EXPECT_EQ(import(Sm2Envelope().blob()), 1);
    Bytes fresh = old;
    fresh[4 + 31] = 0x99;
    EXPECT_EQ(cachedKey(), fresh);
    EXPECT_EQ(script().host.blocks.size(), blocks);
}

TEST_F(ImportEnveloped, EveryImportAddsARecordUpTo64) {
    insert({ecc("c", true, false), rsa("r", 1024, true, false)});
    const int before = referencesAfterRelease();
    for (int count = 3; count <= 64; ++count) {
        ASSERT_EQ(import(Sm2Envelope().blob()), 1);
        ASSERT_EQ(DeviceGetKeypairCount(m_device), count);
        ASSERT_EQ(referencesAfterRelease(), before + 2 * (count - 2));
    }
    SPI_KEYPAIR_HANDLE last = m_imported.back();
    EXPECT_EQ(DeviceGetKeypairType(last), ORVEL_PKI_KEYPAIRTYPE_ENCRYPT);
    EXPECT_EQ(DeviceGetKeypairAlgorithm(last), ORVEL_PKI_ALGORITHM_ECC);
    EXPECT_EQ(DeviceGetKeypairBits(last), 256);
    // The checks of the blob come first, the token is not asked to import.
    allowPlainRsa(1024);
    Bytes otherVersion = Sm2Envelope().blob();
    putNumber(otherVersion, 8, 2);
    Sm2Envelope shortKey;
    shortKey.privateKey.resize(31);
    const Lines tooMany =
        errors("DeviceImportKeypair", "hDevice->m_keypairCount >= KEYPAIR_COUNT_MAX");
    const struct {
        const char *label;
        Bytes blob;
        Lines lines;
    } cases[] = {
        {"c", Sm2Envelope().blob(), tooMany},
        {"r", RsaEnvelope().blob(), tooMany},
        {"c", plainSm2(Bytes(32, 1)), tooMany},
        {"r", plainRsa(1024, Bytes(600, 1)), tooMany},
        {"c", otherVersion, errors("DeviceImportKeypair", "version != 1")},
        {"c", shortKey.blob(), errors("importSM2KeyPair", "len < 32 || len>64")},
        {"c", plainSm2({}), errors("DeviceImportKeypair", "EncKeyPairBlob()==0")},
    };
    const int imports = script().SKF_ImportECCKeyPair.calls();
    for (const auto &row : cases) {
        EXPECT_EQ(import(row.blob, row.label), 0);
        EXPECT_EQ(trace().failures(), row.lines);
    }
    EXPECT_EQ(script().SKF_ImportECCKeyPair.calls(), imports);
    EXPECT_EQ(script().SKF_ImportRSAKeyPair.calls(), 0);
}

TEST_F(ImportEnveloped, DeletedContainersAreNotFound) {
    KeptByContract kept; // the container of the deleted pair, and the device
    keepsHandlesOpen();
    insert({ecc("a", true, false), ecc("c", true, false)});
    SPI_KEYPAIR_HANDLE first = pair("a", ORVEL_PKI_KEYPAIRTYPE_SIGNATURE);
    ASSERT_EQ(DeviceDeleteKeypair(first), 1);
    EXPECT_EQ(import(Sm2Envelope().blob(), "a"), 0);
    EXPECT_EQ(trace().failures(),
              errors("DeviceImportKeypair", "GetContainerIndex(hDevice, label) = -1"));
}

} // namespace
} // namespace tembra::test
