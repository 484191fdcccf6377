// Lists, files, ciphers and digests.
#include "token_fixture.h"

#include "crypto/hex.h"

#include <map>

namespace tembra::test {
namespace {

class TokenServices : public TokenTest {
protected:
    TokenServices() { login(); }

    ULONG createFile(const std::string &file, ULONG size, ULONG rights) {
        return SKF_CreateFile(m_application, text(file), size, rights, rights);
    }
    ULONG write(const std::string &file, ULONG offset, Bytes data) {
        return SKF_WriteFile(m_application, text(file), offset, data.data(),
                             static_cast<ULONG>(data.size()));
    }
    ULONG read(const std::string &file, ULONG offset, ULONG size) {
        Bytes data(size + 1);
        ULONG length = size;
        return SKF_ReadFile(m_application, text(file), offset, size, data.data(), &length);
    }
};

TEST_F(TokenServices, ListsNameWhatIsThere) {
    const auto devices = [](char *list, ULONG *size) { return SKF_EnumDev(1, list, size); };
    const auto applications = [&](auto... list) { return SKF_EnumApplication(m_device, list...); };
    const auto files = [&](auto... list) { return SKF_EnumFiles(m_application, list...); };
    EXPECT_EQ(Names{"APP"}, listed(applications));
    EXPECT_EQ(Names{}, containers());
    EXPECT_EQ(Names{}, listed(files));
    create("one");
    create("\xB6\xFE"); // a name in another encoding
    createFile("file", 1, SECURE_ANYONE_ACCOUNT);
    close();
    open();
    EXPECT_EQ((Names{"one", "\xB6\xFE"}), containers());
    EXPECT_EQ(Names{"file"}, listed(files));
    EXPECT_EQ(Names{m_name}, listed(devices));
    EXPECT_EQ(SAR_OK, TembraSoftTokenUnplug(m_name.c_str()));
    EXPECT_EQ(Names{}, listed(devices));
}

TEST_F(TokenServices, AContainersNameIsTakenOnceAndSixtyFourAreTheMost) {
    HCONTAINER handle = nullptr;
    for (int i = 0; i < 64; ++i)
        create(std::to_string(i));
    EXPECT_EQ(SAR_REACH_MAX_CONTAINER_COUNT,
              SKF_CreateContainer(m_application, text("x"), &handle));
    EXPECT_EQ(SAR_FILE_ALREADY_EXIST, SKF_CreateContainer(m_application, text("5"), &handle));
    EXPECT_EQ(SAR_OK, SKF_DeleteContainer(m_application, text("5")));
    EXPECT_NE(SAR_OK, SKF_DeleteContainer(m_application, text("5")));
    EXPECT_NE(SAR_OK, SKF_OpenContainer(m_application, text("5"), &handle));
    EXPECT_NE(SAR_OK, SKF_CreateContainer(m_application, text(std::string(65, 'x')), &handle));
    create(std::string(64, 'x'));
}

TEST_F(TokenServices, FilesKeepTheirRightsAndSizes) {
    const std::map<std::string, ULONG> rights = {{"never", SECURE_NEVER_ACCOUNT},
                                                 {"admin", SECURE_ADM_ACCOUNT},
                                                 {"user", SECURE_USER_ACCOUNT},
                                                 {"both", SECURE_USER_ACCOUNT | SECURE_ADM_ACCOUNT},
                                                 {"anyone", SECURE_ANYONE_ACCOUNT}};
    const auto accessible = [&] {
        Names files;
        for (const auto &[file, right] : rights) {
            const ULONG result = write(file, 0, {1});
            EXPECT_EQ(result, read(file, 0, 10));
            if (result == SAR_OK)
                files.push_back(file);
        }
        return files;
    };
    for (const auto &[file, right] : rights)
        ASSERT_EQ(SAR_OK, createFile(file, 10, right));
    EXPECT_EQ((Names{"anyone", "both", "user"}), accessible());
    EXPECT_EQ(SAR_OK, SKF_ClearSecureState(m_application));
    EXPECT_EQ(Names{"anyone"}, accessible());
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, createFile("another", 10, 0));
    loginAdmin();
    EXPECT_EQ((Names{"admin", "anyone", "both"}), accessible());
    for (const ULONG offset : {8U, 11U, 0xFFFFFFFFU}) {
        EXPECT_EQ(SAR_INDATALENERR, write("admin", offset, {7, 8, 9}));
        EXPECT_EQ(SAR_INDATALENERR, read("admin", offset, 3));
    }
}

TEST_F(TokenServices, CiphersThatAreNotThereOrLackSomethingAreRefused) {
    Bytes data(16);
    HANDLE key = nullptr;
    ULONG length = 16;
    for (const ULONG algorithm : {SGD_SM1_ECB, SGD_SM1_CBC, SGD_SSF33_ECB, SGD_SSF33_CBC})
        EXPECT_EQ(SAR_NOTSUPPORTYETERR, SKF_SetSymmKey(m_device, data.data(), algorithm, &key));
    ASSERT_EQ(SAR_OK, SKF_SetSymmKey(m_device, data.data(), SGD_SMS4_CBC, &key));
    EXPECT_EQ(SAR_INVALIDPARAMERR, SKF_EncryptInit(key, {})) << "no IV";
    EXPECT_EQ(SAR_OK, SKF_EncryptInit(key, {{}, 16, 0, 0}));
    EXPECT_EQ(SAR_OK, SKF_DecryptInit(key, {{}, 16, 0, 0}));
    EXPECT_EQ(SAR_INDATALENERR, SKF_Encrypt(key, data.data(), 15, data.data(), &length));
    EXPECT_EQ(SAR_INDATALENERR, SKF_Decrypt(key, data.data(), 15, data.data(), &length));
    EXPECT_EQ(SAR_OK, SKF_CloseHandle(key));
}

// The example of GB/T 32918.5: the signer's identity and public key, then the message.
TEST_F(TokenServices, DigestsTakePiecesAndASigner) {
    const auto point =
        crypto::fromHex("09F9DF311E5421A150DD7D161E4BC5C672179FAD1833FC076BB08FF356F35020"
                        "CCEA490CE26775A52DC6EA718CC1AA600AED05FBF35E084A6632F6072DA9AD13");
    ECCPUBLICKEYBLOB signer = {256, {}, {}};
    std::copy_n(point->begin(), 32, signer.XCoordinate + 32);
    std::copy_n(point->begin() + 32, 32, signer.YCoordinate + 32);
    std::string id = "1234567812345678", message = "message digest";
    const auto bytes = [](std::string &text) { return reinterpret_cast<BYTE *>(text.data()); };
    HANDLE handle = nullptr;
    ASSERT_EQ(SAR_OK, SKF_DigestInit(m_device, SGD_SM3, &signer, bytes(id), 16, &handle));
    EXPECT_EQ(SAR_OK, SKF_DigestUpdate(handle, bytes(message), 7));
    EXPECT_EQ(SAR_OK, SKF_DigestUpdate(handle, bytes(message) + 7, 7));
    Bytes value(32);
    ULONG length = 32;
    EXPECT_EQ(SAR_OK, SKF_DigestFinal(handle, value.data(), &length));
    EXPECT_EQ("f0b43e94ba45accaace692ed534382eb17e6ab5a19ce7b31f4486fdfc0d28640",
              crypto::toHex(value));
    EXPECT_NE(SAR_OK, SKF_DigestUpdate(handle, value.data(), 1));
    EXPECT_EQ(SAR_OK, SKF_CloseHandle(handle));
}

} // namespace
} // namespace tembra::test
