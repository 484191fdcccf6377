// Plain key pair blobs on their way into the envelope that the provider makes for the container.
#include "import_test.h"

#include "provider/records.h"

#include <algorithm>

namespace tembra::test {
namespace {

class ImportPlain : public ImportTest {
protected:
    void start(ULONG algorithms, bool isGdk) {
        restart(std::string("\"SupportGDKMSM2Import\"=dword:") + (isGdk ? "1" : "0") + "\r\n");
        resetDevices();
        addToken(
            {ecc("c", true, false), rsa("r", 1024, true, false), ecc("unsigned", false, true)});
        script().memory.devices.front().info.AlgSymCap = algorithms;
        allowPlainRsa(1024);
        discover();
    }
    void expectRefusal(const Bytes &blob, const char *label, const char *message) {
        EXPECT_EQ(import(blob, label), 0) << message;
        EXPECT_THAT(trace().failures(), ElementsAre(error("DeviceImportKeypair", message)));
    }
};

TEST_F(ImportPlain, EnvelopeForEveryToken) {
    const Bytes d(32, 0xDD), der(600, 0x30);
    const struct {
        ULONG algorithms, chosen;
    } tokens[] = {
        {0x00000401, 0x401}, {0x00000501, 0x101}, {0x00000701, 0x101}, {0x00000601, 0x201}};
    for (const auto &token : tokens) {
        for (const bool isGdk : {false, true}) {
            start(token.algorithms, isGdk);
            script().SKF_ImportECCKeyPair.run([&](HCONTAINER container, ENVELOPEDKEYBLOB *blob) {
                EXPECT_EQ(blob->ulSymmAlgID, token.chosen);
                EXPECT_EQ(blob->PubKey.XCoordinate[63], 0x2A);
                EXPECT_EQ(blob->PubKey.YCoordinate[63], 0x2B);
                EXPECT_EQ(blob->ECCCipherBlob.CipherLen, 16u);
                // K bytes, right-aligned: 32, or 48 with the length in bits and padding around d.
                BYTE *key = blob->cbEncryptedPriKey + 64 - (isGdk ? 48 : 32);
                Bytes wanted = isGdk ? Bytes{0, 1, 0, 0} : Bytes();
                wanted.insert(wanted.end(), d.begin(), d.end());
                wanted.resize(isGdk ? 48 : 32, 0x0C);
                EXPECT_EQ(Bytes(key, blob->cbEncryptedPriKey + 64),
                          toyEncrypt(Bytes(16, 0x77), {}, wanted));
                EXPECT_TRUE(
                    std::all_of(blob->cbEncryptedPriKey, key, [](BYTE byte) { return byte == 0; }));
                return script().SKF_ImportECCKeyPair.usual(container, blob);
            });
            EXPECT_EQ(import(plainSm2(d)), 1);
            EXPECT_EQ(import(plainRsa(1024, der), "r"), 1);
            EXPECT_EQ(script().SKF_ImportRSAKeyPair.argument<1>(), token.chosen);
            EXPECT_EQ(script().SKF_ImportRSAKeyPair.argument<3>(), 128u);
            EXPECT_EQ(script().SKF_ImportRSAKeyPair.argument<5>(), 608u) << "padded by the token";
            freeImported();
        }
    }
}

TEST_F(ImportPlain, Refusals) {
    const char *failed = "EncKeyPairBlob()==0";
    for (const ULONG algorithms : {0x00000400u, 0x00000001u, 0x00000000u}) { // no ECB, no cipher
        start(algorithms, false);
        expectRefusal(plainSm2(Bytes(32, 1)), "c", failed);
        expectRefusal(plainRsa(1024, Bytes(600, 1)), "r", failed);
    }
    start(0x00000401, false);
    expectRefusal(plainSm2(Bytes(32, 1)), "unsigned", "hSignKeypair == 0");
    expectRefusal(plainRsa(1024, Bytes(600, 1)), "c", failed); // of the other algorithm
    expectRefusal(plainSm2(Bytes(32, 1)), "r", failed);
    expectRefusal(plainRsa(1536, Bytes(600, 1)), "r", failed);
    Bytes blob = plainSm2(Bytes(32, 1));
    for (const std::size_t size : {9u, 16u, 17u, 115u}) {
        expectRefusal(Bytes(blob.begin(), blob.begin() + static_cast<std::ptrdiff_t>(size)), "c",
                      failed);
    }
    blob = plainRsa(1024, {1});
    expectRefusal(Bytes(blob.begin(), blob.begin() + 19), "r", failed);
    m_device->m_isformat = 0;
    expectRefusal(blob, "r", "hDevice->m_isformat == 0");
    m_device->m_isformat = 1;
}

} // namespace
} // namespace tembra::test
