// Enveloped blobs that are refused: every check with its message, in its order.
#include "import_test.h"

namespace tembra::test {
namespace {

// Offsets in a blob with its header of 20 bytes; the SM2 ones for L = 16.
constexpr std::size_t SM2_CURVE = 20, SM2_POINT = 24, SM2_X = 25, SM2_Y = 57, SM2_ALGORITHM = 89,
                      SM2_KEY_LENGTH = 93, SM2_C1 = 97, SM2_NEW_POINT = 210,
                      SM2_PRIVATE_LENGTH = 275;
constexpr std::size_t RSA_MODULUS_LENGTH = 20, RSA_MODULUS = 24, RSA_EXPONENT_LENGTH = 152,
                      RSA_EXPONENT = 156, RSA_ALGORITHM = 159, RSA_KEY_LENGTH = 163,
                      RSA_PRIVATE_LENGTH = 295;

struct Change {
    std::size_t at;
    int size; // 1 or 4 bytes
    std::uint32_t value;
    const char *message;
};

Bytes changed(Bytes blob, const Change &change) {
    if (change.size == 4)
        putNumber(blob, change.at, change.value);
    else
        blob.at(change.at) = static_cast<unsigned char>(change.value);
    return blob;
}

// A payload cut below this size, the header telling the truth, meets this message.
struct Cut {
    std::size_t below;
    const char *message;
};

class ImportRefusal : public ImportTest {
protected:
    void expectRefusal(const Bytes &blob, const std::string &function, const char *message) {
        ASSERT_EQ(import(blob), 0) << message;
        ASSERT_THAT(trace().failures(), ElementsAre(error(function, message)));
        ASSERT_EQ(script().SKF_ImportECCKeyPair.calls() + script().SKF_ImportRSAKeyPair.calls(), 0);
    }
    template <typename Rows>
    void expectChangesRefused(const Bytes &blob, const std::string &function, const Rows &rows) {
        for (const Change &row : rows) {
            SCOPED_TRACE("byte " + std::to_string(row.at) + " = " + std::to_string(row.value));
            expectRefusal(changed(blob, row), function, row.message);
        }
    }
    template <typename Rows>
    void expectCutsRefused(const Bytes &blob, const std::string &function, const Rows &rows) {
        std::size_t size = 1;
        for (const Cut &row : rows) {
            for (; size < row.below; ++size) {
                SCOPED_TRACE("payload of " + std::to_string(size));
                Bytes cut(blob.begin(), blob.begin() + static_cast<std::ptrdiff_t>(20 + size));
                fixLength(cut);
                expectRefusal(cut, function, row.message);
            }
        }
        EXPECT_EQ(size + 20, blob.size());
    }
};

TEST_F(ImportRefusal, Sm2Payload) {
    insert({ecc("c", true, false)});
    const Bytes blob = Sm2Envelope().blob();
    const Change changes[] = {
        {SM2_CURVE, 4, 6, "rvcurve != ORVEL_PKI_ECC_CURVE_SM2"},
        {SM2_CURVE, 4, 0x80000007, "rvcurve != ORVEL_PKI_ECC_CURVE_SM2"},
        {SM2_POINT, 1, 2, "keyblob[pos] != 4"},
        {SM2_X, 1, 0, "memcmp(x, &keyblob[pos], 32) != 0"},
        {SM2_Y + 31, 1, 0, "memcmp(y, &keyblob[pos], 32) != 0"},
        {SM2_ALGORITHM, 4, SGD_SMS4_ECB, "an unsupportd ECC algoritom"},
        {SM2_ALGORITHM, 4, ORVEL_PKI_ALGORITHM_SMS4_CBC, "an unsupportd ECC algoritom"},
        {SM2_ALGORITHM, 4, 0xFFFFFFFF, "an unsupportd ECC algoritom"},
        {SM2_KEY_LENGTH, 4, 0, "encKeyLen < 97"},
        {SM2_KEY_LENGTH, 4, 96, "encKeyLen < 97"},
        {SM2_KEY_LENGTH, 4, 215, "keyblobLen - pos < encKeyLen"},
        {SM2_KEY_LENGTH, 4, 0x80000000, "keyblobLen - pos < encKeyLen"},
        {SM2_KEY_LENGTH, 4, 0xFFFFFFFF, "keyblobLen - pos < encKeyLen"},
        {SM2_C1, 1, 2, "keyblob[pos] != 4"},
        {SM2_NEW_POINT, 1, 2, "rvkeyblob[pos] != 4"},
        {SM2_PRIVATE_LENGTH, 4, 33, "keyblobLen - pos != len"},
        {SM2_PRIVATE_LENGTH, 4, 0x80000020, "keyblobLen - pos != len"},
    };
    expectChangesRefused(blob, "importSM2KeyPair", changes);
    const Cut cuts[] = {{4, "rvkeyblobLen - pos < 4"},
                        {69, "keyblobLen - pos < 65"},
                        {73, TOO_SHORT_FOR_NUMBER},
                        {81, "keyblobLen - pos < 8"},
                        {190, "keyblobLen - pos < encKeyLen"},
                        {255, "keyblobLen - pos < 65"},
                        {259, TOO_SHORT_FOR_NUMBER},
                        {291, "keyblobLen - pos != len"}};
    expectCutsRefused(blob, "importSM2KeyPair", cuts);
    for (const std::size_t size : {0u, 31u, 65u}) {
        Sm2Envelope odd;
        odd.privateKey.resize(size);
        expectRefusal(odd.blob(), "importSM2KeyPair", "len < 32 || len>64");
    }
}

TEST_F(ImportRefusal, RsaPayload) {
    insert({rsa("c", 1024, true, false)});
    const Bytes blob = RsaEnvelope().blob();
    const Change changes[] = {
        {RSA_MODULUS_LENGTH, 4, 127, "len != nLen"},
        {RSA_MODULUS_LENGTH, 4, 0, "len != nLen"},
        {RSA_MODULUS_LENGTH, 4, 0x80000000, "keyblobLen - pos < len"},
        {RSA_MODULUS + 127, 1, 1, "memcmp(n, &keyblob[pos], len) != 0"},
        {RSA_EXPONENT_LENGTH, 4, 2, "rvlen != eLen"},
        {RSA_EXPONENT_LENGTH, 4, 0x80000003, "rvlen != eLen"},
        {RSA_EXPONENT, 1, 2, "memcmp(e, &keyblob[pos], len) != 0"},
        {RSA_ALGORITHM, 4, SGD_SMS4_ECB, "unsupportd algorithm"},
        {RSA_ALGORITHM, 4, ORVEL_PKI_ALGORITHM_SM1_CBC, "unsupportd algorithm"},
        {RSA_KEY_LENGTH, 4, 127, "encKeyLen != nLen"},
        {RSA_KEY_LENGTH, 4, 0x80000080, "encKeyLen != nLen"},
        {RSA_PRIVATE_LENGTH, 4, 0, "cipherLen <= 0"},
        {RSA_PRIVATE_LENGTH, 4, 609, "keyblobLen - pos != cipherLen"},
        {RSA_PRIVATE_LENGTH, 4, 0x80000260, "keyblobLen - pos != cipherLen"},
    };
    expectChangesRefused(blob, "importRSAKeyPair", changes);
    const Cut cuts[] = {{4, TOO_SHORT_FOR_NUMBER},   {132, "keyblobLen - pos < len"},
                        {136, TOO_SHORT_FOR_NUMBER}, {139, "keyblobLen - pos < eLen"},
                        {147, TOO_SHORT_FOR_NUMBER}, {275, "keyblobLen - pos < encKeyLen"},
                        {279, TOO_SHORT_FOR_NUMBER}, {887, "keyblobLen - pos != cipherLen"}};
    expectCutsRefused(blob, "importRSAKeyPair", cuts);
    Bytes longer = blob;
    longer.push_back(0);
    fixLength(longer);
    expectRefusal(longer, "importRSAKeyPair", "keyblobLen - pos != cipherLen");
}

TEST_F(ImportRefusal, HeaderAndTrailingByte) {
    insert({ecc("c", true, false)});
    const Bytes blob = Sm2Envelope().blob();
    const char *wrongLength = "len <= 0 || len + 20 != keybloblen";
    const Change changes[] = {
        {0, 1, 'X', "memcmp(keyblob, 'SCAENCKP', 8) != 0"},
        {8, 4, 2, "version != 1"},
        {12, 4, 2, "algo != ORVEL_PKI_ALGORITHM_RSA && algo != ORVEL_PKI_ALGORITHM_ECC"},
        {12, 4, 0x80000004, "algo != ORVEL_PKI_ALGORITHM_RSA && algo != ORVEL_PKI_ALGORITHM_ECC"},
        {16, 4, 0, wrongLength},
        {16, 4, 290, wrongLength},
        {16, 4, 0xFFFFFFFF, wrongLength},
    };
    expectChangesRefused(blob, "DeviceImportKeypair", changes);
    for (std::size_t size = 9; size < 20; ++size) {
        expectRefusal(Bytes(blob.begin(), blob.begin() + static_cast<std::ptrdiff_t>(size)),
                      "DeviceImportKeypair", "keybloblen < 20");
    }
    Bytes empty(blob.begin(), blob.begin() + 20);
    fixLength(empty);
    expectRefusal(empty, "DeviceImportKeypair", wrongLength);
    Bytes longer = blob;
    longer.push_back(0);
    expectRefusal(longer, "DeviceImportKeypair", wrongLength);
    fixLength(longer);
    expectRefusal(longer, "importSM2KeyPair", "keyblobLen - pos != len");
}

TEST_F(ImportRefusal, Arguments) {
    insert({ecc("c", true, false)});
    const Bytes blob = Sm2Envelope().blob();
    const int size = static_cast<int>(blob.size());
    SPI_KEYPAIR_HANDLE handle = nullptr;
    const struct {
        SPI_DEVICE_HANDLE device;
        const unsigned char *blob;
        int size, type;
        const char *label;
        SPI_KEYPAIR_HANDLE *handle;
        int result;
        const char *message;
    } rows[] = {
        {nullptr, nullptr, 0, 2, nullptr, nullptr, -2, "hDevice == 0"},
        {m_device, nullptr, size, 1, "c", &handle, -1, "keyblob == 0 || keybloblen <= 8"},
        {m_device, blob.data(), 8, 2, "c", &handle, -1, "keyblob == 0 || keybloblen <= 8"},
        {m_device, blob.data(), -1, 1, "c", &handle, -1, "keyblob == 0 || keybloblen <= 8"},
        {m_device, blob.data(), size, 2, nullptr, &handle, 0,
         "type != ORVEL_PKI_KEYPAIRTYPE_ENCRYPT"},
        {m_device, blob.data(), size, 1, nullptr, &handle, -1, "typelabel == 0 || label[0] == 0"},
        {m_device, blob.data(), size, 1, "", nullptr, -1, "typelabel == 0 || label[0] == 0"},
        {m_device, blob.data(), size, 1, "none", nullptr, -1, "phKeypair == 0"},
        {m_device, blob.data(), size, 1, "C", &handle, 0, "GetContainerIndex(hDevice, label) = -1"},
    };
    trace().setLevel("5"); // which must not look into what is null
    for (const auto &at : rows) {
        mark();
        EXPECT_EQ(DeviceImportKeypair(at.device, at.blob, at.size, at.type, at.label, at.handle),
                  at.result);
        EXPECT_EQ(trace().failures(), errors("DeviceImportKeypair", at.message));
    }
    EXPECT_THAT(callsSinceMark(), IsEmpty());
    EXPECT_EQ(handle, nullptr);
}

} // namespace
} // namespace tembra::test
