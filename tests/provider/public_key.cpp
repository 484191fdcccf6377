// Public keys in the host library's encoding.
#include "scripted_test.h"

namespace tembra::test {
namespace {

class PublicKeys : public ScriptedTest {};

TEST_F(PublicKeys, AreSnapshots) {
    insert({ecc("sm2", true, false)});
    SPI_PUBLICKEY_HANDLE key = DeviceGetPublicKeyFromKeypair(pair("sm2", 2));
    release();
    EXPECT_EQ(script().memory.open(), 0);
    unsigned char bytes[68];
    EXPECT_EQ(DeviceExportPublicKey(key, bytes, sizeof bytes, nullptr), 1);
    EXPECT_EQ(Bytes(bytes, bytes + sizeof bytes), encodedEccKey(true));
    EXPECT_EQ(DeviceFreePublicKey(key), 1);
}

TEST_F(PublicKeys, EncodingsUpTo1024BytesFit) {
    for (const int length : {1024, 1025, 5000}) {
        script().OrvelPKICryptoEncodeECCPubKey.run([length](auto, auto, auto, auto, auto,
                                                            unsigned char **out, int *outLength) {
            const Bytes filler(static_cast<std::size_t>(length), 'k');
            return memory_token::OrvelPKICryptoEncodeRSAPubKey(filler.data(), length - 7,
                                                               filler.data(), 4, out, outLength);
        });
        resetDevices();
        insert({ecc("sm2", true, false)});
        SPI_PUBLICKEY_HANDLE key = DeviceGetPublicKeyFromKeypair(pair("sm2", 2));
        EXPECT_EQ(key != nullptr, length <= 1024);
        EXPECT_EQ(trace().failures().size(), length <= 1024 ? 0u : 1u);
        DeviceFreePublicKey(key);
    }
}

} // namespace
} // namespace tembra::test
