// Lists, files, space, ciphers and digests.
#include "token_fixture.h"

#include "crypto/hex.h"
#include "crypto/sm2_sign.h"

#include <map>

namespace tembra::test {
namespace {

using crypto::Bytes;

class TokenServices : public TokenTest {
protected:
    ULONG write(const char *file, ULONG offset, Bytes data) {
        return SKF_WriteFile(application, text(file), offset, data.data(),
                             static_cast<ULONG>(data.size()));
    }
    ULONG read(const char *file, ULONG offset, ULONG size, Bytes *out = nullptr) {
        Bytes data(size + 1);
        ULONG length = size + 1;
        const ULONG result =
            SKF_ReadFile(application, text(file), offset, size, data.data(), &length);
        if (out != nullptr) {
            out->assign(data.begin(), data.begin() + length);
        }
        return result;
    }
    ULONG createFile(const char *file, ULONG size, ULONG rights) {
        return SKF_CreateFile(application, text(file), size, rights, rights);
    }
    ULONG freeSpace() const {
        DEVINFO info = {};
        EXPECT_EQ(SAR_OK, SKF_GetDevInfo(device, &info));
        return info.FreeSpace;
    }
};

TEST_F(TokenServices, ListsKeepTheirProtocol) {
    login();
    const auto devices = [&](char *list, ULONG *size) { return SKF_EnumDev(1, list, size); };
    const auto files = [&](char *list, ULONG *size) {
        return SKF_EnumFiles(application, list, size);
    };
    EXPECT_EQ(Names{"APP"}, listed([&](char *list, ULONG *size) {
                  return SKF_EnumApplication(device, list, size);
              }));
    EXPECT_EQ(Names{}, containers());
    EXPECT_EQ(Names{}, listed(files));
    create("one");
    create("\xB6\xFE"); // a name in another encoding
    createFile("file", 1, SECURE_ANYONE_ACCOUNT);
    close();
    open();
    EXPECT_EQ((Names{"one", "\xB6\xFE"}), containers());
    EXPECT_EQ(Names{"file"}, listed(files));
    EXPECT_EQ(Names{name}, listed(devices));
    EXPECT_EQ(SAR_OK, TembraSoftTokenUnplug(name.c_str()));
    EXPECT_EQ(Names{}, listed(devices));
    EXPECT_EQ(SAR_OK, TembraSoftTokenPlug(name.c_str()));
    EXPECT_EQ(Names{name}, listed(devices));
}

TEST_F(TokenServices, AContainersNameIsTakenOnceAndSixtyFourAreTheMost) {
    login();
    HCONTAINER handle = nullptr;
    for (int i = 0; i < 64; ++i) {
        create(std::to_string(i));
    }
    EXPECT_EQ(SAR_REACH_MAX_CONTAINER_COUNT, SKF_CreateContainer(application, text("x"), &handle));
    EXPECT_EQ(SAR_FILE_ALREADY_EXIST, SKF_CreateContainer(application, text("5"), &handle));
    EXPECT_EQ(SAR_OK, SKF_DeleteContainer(application, text("5")));
    EXPECT_NE(SAR_OK, SKF_DeleteContainer(application, text("5")));
    EXPECT_NE(SAR_OK, SKF_OpenContainer(application, text("5"), &handle));
    EXPECT_NE(SAR_OK, SKF_CreateContainer(application, text(""), &handle));
    EXPECT_NE(SAR_OK, SKF_CreateContainer(application, text(std::string(65, 'x')), &handle));
    create(std::string(64, 'x'));
}

TEST_F(TokenServices, FilesKeepTheirRightsAndSizes) {
    const std::map<std::string, ULONG> rights = {{"never", SECURE_NEVER_ACCOUNT},
                                                 {"admin", SECURE_ADM_ACCOUNT},
                                                 {"user", SECURE_USER_ACCOUNT},
                                                 {"both", SECURE_USER_ACCOUNT | SECURE_ADM_ACCOUNT},
                                                 {"anyone", SECURE_ANYONE_ACCOUNT}};
    const auto expectAccess = [&](const Names &expected) {
        Names readable, writable;
        for (const auto &[file, right] : rights) {
            if (read(file.c_str(), 0, 10) == SAR_OK) {
                readable.push_back(file);
            }
            if (write(file.c_str(), 0, {1}) == SAR_OK) {
                writable.push_back(file);
            }
        }
        EXPECT_EQ(expected, readable);
        EXPECT_EQ(expected, writable);
    };
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, createFile("user", 10, 0));
    login();
    for (const auto &[file, right] : rights) {
        ASSERT_EQ(SAR_OK, createFile(file.c_str(), 10, right));
    }
    EXPECT_EQ(SAR_FILE_ALREADY_EXIST, createFile("user", 10, 0));
    expectAccess({"anyone", "both", "user"});
    EXPECT_EQ(SAR_OK, SKF_ClearSecureState(application));
    expectAccess({"anyone"});
    loginAdmin();
    expectAccess({"admin", "anyone", "both"});
    login();
    EXPECT_EQ(SAR_OK, write("user", 7, {7, 8, 9}));
    EXPECT_EQ(SAR_INDATALENERR, write("user", 8, {7, 8, 9}));
    EXPECT_EQ(SAR_INDATALENERR, write("user", 0xFFFFFFFF, {7, 8, 9}));
    close();
    open();
    login();
    Bytes content;
    EXPECT_EQ(SAR_OK, read("user", 6, 4, &content));
    EXPECT_EQ((Bytes{0, 7, 8, 9}), content);
    EXPECT_EQ(SAR_INDATALENERR, read("user", 10, 1));
    EXPECT_EQ(SAR_INDATALENERR, read("user", 11, 0));
    EXPECT_EQ(SAR_OK, SKF_DeleteFile(application, text("user")));
    EXPECT_EQ(SAR_FILE_NOT_EXIST, SKF_DeleteFile(application, text("user")));
    EXPECT_EQ(SAR_FILE_NOT_EXIST, read("user", 0, 0));
}

TEST_F(TokenServices, SpaceRunsOutAndComesBack) {
    login();
    const HCONTAINER container = createSm2("sm2");
    ULONG before = freeSpace();
    Bytes certificate(700, 0x30);
    EXPECT_EQ(SAR_OK, SKF_ImportCertificate(container, 1, certificate.data(), 700));
    EXPECT_EQ(before - 700, freeSpace());
    before -= 700;
    EXPECT_EQ(SAR_NO_ROOM, createFile("huge", 0xFFFFFFFF, 0xFF));
    EXPECT_EQ(SAR_NO_ROOM, createFile("big", before, 0xFF));
    EXPECT_EQ(SAR_OK, createFile("big", before - 48, 0xFF));
    EXPECT_EQ(0U, freeSpace());
    HCONTAINER refused = nullptr;
    EXPECT_EQ(SAR_NO_ROOM, SKF_CreateContainer(application, text("one"), &refused));
    EXPECT_EQ(SAR_OK, write("big", before - 49, {1})) << "what is there may change";
    EXPECT_EQ(SAR_OK, SKF_DeleteFile(application, text("big")));
    EXPECT_EQ(before, freeSpace());
}

TEST_F(TokenServices, Sms4WorksInEveryModeAndPadding) {
    Bytes secret = *crypto::fromHex("0123456789abcdeffedcba9876543210");
    HANDLE key = nullptr;
    const auto crypt = [&](bool encrypt, const BLOCKCIPHERPARAM &param, Bytes in, Bytes &out) {
        EXPECT_EQ(SAR_OK, (encrypt ? SKF_EncryptInit : SKF_DecryptInit)(key, param));
        out.assign(in.size() + 16, 0);
        auto length = static_cast<ULONG>(out.size());
        const auto run = encrypt ? SKF_Encrypt : SKF_Decrypt;
        const ULONG result =
            run(key, in.data(), static_cast<ULONG>(in.size()), out.data(), &length);
        out.resize(result == SAR_OK ? length : 0);
        return result;
    };
    Bytes out, back;
    for (const ULONG algorithm : {SGD_SMS4_CBC, SGD_SMS4_ECB}) {
        ASSERT_EQ(SAR_OK, SKF_SetSymmKey(device, secret.data(), algorithm, &key));
        for (const ULONG padding : {1U, 0U}) {
            for (const std::size_t size : {0U, 1U, 15U, 16U, 17U, 1024U}) {
                SCOPED_TRACE(size);
                const BLOCKCIPHERPARAM param = {{0, 0, 0, 9}, 16, padding, 0};
                const Bytes plain(size, 0x77);
                const bool fits = padding == 1 || size % 16 == 0;
                EXPECT_EQ(fits ? SAR_OK : SAR_INDATALENERR, crypt(true, param, plain, out));
                if (fits) {
                    EXPECT_EQ(padding == 1 ? size / 16 * 16 + 16 : size, out.size());
                    EXPECT_EQ(SAR_OK, crypt(false, param, out, back));
                    EXPECT_EQ(plain, back);
                }
            }
        }
        EXPECT_EQ(algorithm == SGD_SMS4_ECB, SKF_EncryptInit(key, {}) == SAR_OK) << "no IV";
        EXPECT_EQ(SAR_OK, SKF_CloseHandle(key));
    }
    for (const ULONG algorithm : {SGD_SM1_ECB, SGD_SM1_CBC, SGD_SSF33_ECB, SGD_SSF33_CBC}) {
        EXPECT_EQ(SAR_NOTSUPPORTYETERR, SKF_SetSymmKey(device, secret.data(), algorithm, &key));
    }
}

TEST_F(TokenServices, DigestsTakePiecesAndASigner) {
    ECCPUBLICKEYBLOB signer = {};
    login();
    createSm2("sm2", &signer);
    std::string id(crypto::sm2DefaultSignerId);
    Bytes message(1000, 0x61);
    HANDLE handle = nullptr;
    ASSERT_EQ(SAR_OK, SKF_DigestInit(device, SGD_SM3, &signer, reinterpret_cast<BYTE *>(id.data()),
                                     static_cast<ULONG>(id.size()), &handle));
    for (ULONG at = 0; at < 1000; at += 250) {
        EXPECT_EQ(SAR_OK, SKF_DigestUpdate(handle, message.data() + at, 250));
    }
    std::array<BYTE, 32> value{};
    ULONG length = 31;
    EXPECT_EQ(SAR_BUFFER_TOO_SMALL, SKF_DigestFinal(handle, value.data(), &length));
    EXPECT_EQ(SAR_OK, SKF_DigestFinal(handle, value.data(), &length));
    EXPECT_EQ(*crypto::sm2MessageDigest(publicKey(signer), message), value);
    EXPECT_NE(SAR_OK, SKF_DigestUpdate(handle, message.data(), 1));
    EXPECT_EQ(SAR_OK, SKF_CloseHandle(handle));
    EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_CloseHandle(handle));
}

} // namespace
} // namespace tembra::test
