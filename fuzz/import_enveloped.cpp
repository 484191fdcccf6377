// DeviceImportKeypair with an enveloped blob ("SCAENCKP") of any bytes.
#include "support/provider_run.h"

#include "../tests/support/call_faults.h"

using namespace tembra;
using namespace tembra::fuzz;

namespace {

const ULONG ANSWERS[] = {SAR_OK,
                         SAR_OK,
                         SAR_OK,
                         SAR_USER_NOT_LOGGED_IN,
                         SAR_OBJERR,
                         SAR_DECRYPTPADERR,
                         0x0B000033,
                         1,
                         SAR_DEVICE_REMOVED};

bool same(const void *field, const ExactBlock &blob, std::size_t at, std::size_t size) {
    return at + size <= static_cast<std::size_t>(blob.size()) &&
           std::memcmp(field, blob.data() + at, size) == 0;
}

// Whether every byte that the token receives comes from its place in the blob.
bool isShareOf(const ExactBlock &blob, const ENVELOPEDKEYBLOB *share) {
    const ECCCIPHERBLOB &cipher = share->ECCCipherBlob;
    const std::size_t c2 = 20 + 142;
    const std::size_t c2Size = cipher.CipherLen;
    const std::size_t keyAt = c2 + c2Size + 101;
    const std::size_t keySize = static_cast<std::size_t>(blob.size()) - keyAt;
    return keySize >= 32 && keySize <= 64 && share->Version == 1 && share->ulBits == 256 &&
           share->PubKey.BitLen == 256 && same(cipher.XCoordinate + 32, blob, c2 - 64, 32) &&
           same(cipher.YCoordinate + 32, blob, c2 - 32, 32) &&
           same(cipher.Cipher, blob, c2, c2Size) && same(cipher.HASH, blob, c2 + c2Size, 32) &&
           same(share->PubKey.XCoordinate + 32, blob, c2 + c2Size + 33, 32) &&
           same(share->PubKey.YCoordinate + 32, blob, c2 + c2Size + 65, 32) &&
           same(share->cbEncryptedPriKey + 64 - keySize, blob, keyAt, keySize);
}

void checkShare(const ExactBlock &blob) {
    test::script().SKF_ImportECCKeyPair.run([&blob](void *container, ENVELOPEDKEYBLOB *share) {
        require(isShareOf(blob, share), "the token receives bytes that are not in the blob");
        return test::script().SKF_ImportECCKeyPair.usual(container, share);
    });
    test::script().SKF_ImportRSAKeyPair.run([&blob](void *container, ULONG algorithm, BYTE *key,
                                                    ULONG keySize, BYTE *data, ULONG size) {
        const auto total = static_cast<std::size_t>(blob.size());
        require(size < total && same(data, blob, total - size, size) &&
                    same(key, blob, total - size - 4 - keySize, keySize),
                "the token receives bytes that are not in the blob");
        return test::script().SKF_ImportRSAKeyPair.usual(container, algorithm, key, keySize, data,
                                                         size);
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input input(data, size);
    ProviderRun run(input);
    insertTokenForImports(input);
    const OneDevice device;
    const char *import = input.byte() & 1u ? "SKF_ImportRSAKeyPair" : "SKF_ImportECCKeyPair";
    if (const ULONG answer = input.pick(ANSWERS))
        test::planAnswer(import, 1, answer);
    const ExactBlock blob(input.rest());
    checkShare(blob);

    SPI_KEYPAIR_HANDLE pair = nullptr;
    const int before = DeviceGetKeypairCount(device);
    const int rv = DeviceImportKeypair(device, blob.data(), blob.size(),
                                       ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, "c", &pair);
    require(rv == 1 || rv == 0 || rv == TEMBRA_NOT_LOGGED_IN || rv == TEMBRA_BAD_ARGUMENT,
            "an undefined result");
    require((rv == 1) == (pair != nullptr), "the handle contradicts the result");
    require(DeviceGetKeypairCount(device) == before + (rv == 1), "wrong number of key pairs");
    DeviceFreeKeypair(pair);
    return 0;
}
