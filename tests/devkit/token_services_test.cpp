// Lists, files, space, ciphers and digests.
#include "token_fixture.h"

#include "crypto/hex.h"
#include "crypto/sm2_sign.h"
#include "crypto/sm4.h"

#include <algorithm>
#include <map>

namespace tembra::test {
namespace {

using crypto::Bytes;
using Names = std::vector<std::string>;

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
    ULONG createFile(const char *file, ULONG size, ULONG readRights, ULONG writeRights) {
        return SKF_CreateFile(application, text(file), size, readRights, writeRights);
    }
};

TEST_F(TokenServices, ListsKeepTheirProtocol) {
    login();
    const auto devices = [&](char *list, ULONG *size) { return SKF_EnumDev(1, list, size); };
    const auto applications = [&](char *list, ULONG *size) {
        return SKF_EnumApplication(device, list, size);
    };
    const auto containers = [&](char *list, ULONG *size) {
        return SKF_EnumContainer(application, list, size);
    };
    const auto files = [&](char *list, ULONG *size) {
        return SKF_EnumFiles(application, list, size);
    };
    EXPECT_EQ(Names{name}, listed(devices));
    EXPECT_EQ(Names{"APP"}, listed(applications));
    EXPECT_EQ(Names{}, listed(containers));
    EXPECT_EQ(Names{}, listed(files));
    SKF_CloseContainer(create("one"));
    SKF_CloseContainer(create("\xB6\xFE")); // a name in another encoding
    createFile("file", 1, SECURE_ANYONE_ACCOUNT, SECURE_ANYONE_ACCOUNT);
    close();
    open();
    EXPECT_EQ((Names{"one", "\xB6\xFE"}), listed(containers));
    EXPECT_EQ(Names{"file"}, listed(files));
    EXPECT_EQ(SAR_OK, TembraSoftTokenUnplug(name.c_str()));
    EXPECT_EQ(Names{}, listed(devices));
    EXPECT_EQ(SAR_OK, TembraSoftTokenPlug(name.c_str()));
    EXPECT_EQ(Names{name}, listed(devices));
}

TEST_F(TokenServices, AContainersNameIsTakenOnceAndSixtyFourAreTheMost) {
    login();
    HCONTAINER handle = nullptr;
    for (int i = 0; i < 64; ++i) {
        SKF_CloseContainer(create(std::to_string(i).c_str()));
    }
    EXPECT_EQ(SAR_REACH_MAX_CONTAINER_COUNT, SKF_CreateContainer(application, text("x"), &handle));
    EXPECT_EQ(SAR_FILE_ALREADY_EXIST, SKF_CreateContainer(application, text("5"), &handle));
    EXPECT_EQ(SAR_OK, SKF_DeleteContainer(application, text("5")));
    EXPECT_NE(SAR_OK, SKF_DeleteContainer(application, text("5")));
    EXPECT_NE(SAR_OK, SKF_OpenContainer(application, text("5"), &handle));
    EXPECT_NE(SAR_OK, SKF_CreateContainer(application, text(""), &handle));
    EXPECT_NE(SAR_OK, SKF_CreateContainer(application, std::string(65, 'x').data(), &handle));
    SKF_CloseContainer(create(std::string(64, 'x').c_str()));
}

TEST_F(TokenServices, FilesKeepTheirRightsAndSizes) {
    const std::map<std::string, ULONG> rights = {{"never", SECURE_NEVER_ACCOUNT},
                                                 {"admin", SECURE_ADM_ACCOUNT},
                                                 {"user", SECURE_USER_ACCOUNT},
                                                 {"both", SECURE_USER_ACCOUNT | SECURE_ADM_ACCOUNT},
                                                 {"anyone", SECURE_ANYONE_ACCOUNT}};
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, createFile("user", 10, 0, 0));
    login();
    for (const auto &[file, right] : rights) {
        ASSERT_EQ(SAR_OK, createFile(file.c_str(), 10, right, right));
    }
    EXPECT_EQ(SAR_FILE_ALREADY_EXIST, createFile("user", 10, 0, 0));
    const struct {
        const char *who;
        Names may;
    } logins[] = {{"nobody", {"anyone"}},
                  {"admin", {"admin", "anyone", "both"}},
                  {"user", {"anyone", "both", "user"}}};
    for (const auto &row : logins) {
        SCOPED_TRACE(row.who);
        SKF_ClearSecureState(application);
        if (row.who == std::string("admin")) {
            loginAdmin();
        } else if (row.who == std::string("user")) {
            login();
        }
        Names may;
        for (const auto &[file, right] : rights) {
            const bool mayRead = read(file.c_str(), 0, 10) == SAR_OK;
            const bool mayWrite = write(file.c_str(), 0, {1}) == SAR_OK;
            EXPECT_EQ(mayRead, mayWrite);
            if (mayRead) {
                may.push_back(file);
            }
        }
        EXPECT_EQ(row.may, may);
    }
    Bytes content;
    EXPECT_EQ(SAR_OK, write("user", 7, {7, 8, 9}));
    EXPECT_EQ(SAR_INDATALENERR, write("user", 8, {7, 8, 9}));
    EXPECT_EQ(SAR_INDATALENERR, write("user", 0xFFFFFFFF, {7, 8, 9}));
    close();
    open();
    login();
    EXPECT_EQ(SAR_OK, read("user", 6, 4, &content));
    EXPECT_EQ((Bytes{0, 7, 8, 9}), content);
    EXPECT_EQ(SAR_OK, read("user", 10, 0, &content));
    EXPECT_TRUE(content.empty());
    EXPECT_EQ(SAR_INDATALENERR, read("user", 10, 1));
    EXPECT_EQ(SAR_INDATALENERR, read("user", 11, 0));
    EXPECT_EQ(SAR_FILE_NOT_EXIST, read("none", 0, 0));
    FILEATTRIBUTE attributes = {};
    EXPECT_EQ(SAR_OK, SKF_GetFileInfo(application, text("user"), &attributes));
    EXPECT_STREQ("user", attributes.FileName);
    EXPECT_EQ(10U, attributes.FileSize);
    EXPECT_EQ(SECURE_USER_ACCOUNT, attributes.ReadRights);
    EXPECT_EQ(SAR_OK, SKF_DeleteFile(application, text("user")));
    EXPECT_EQ(SAR_FILE_NOT_EXIST, SKF_DeleteFile(application, text("user")));
}

TEST_F(TokenServices, SpaceRunsOutAndComesBack) {
    login();
    const ULONG before = freeSpace();
    EXPECT_EQ(SAR_NO_ROOM, createFile("huge", 0xFFFFFFFF, 0xFF, 0xFF));
    EXPECT_EQ(SAR_NO_ROOM, createFile("big", before, 0xFF, 0xFF));
    EXPECT_EQ(SAR_OK, createFile("big", before - 48, 0xFF, 0xFF));
    EXPECT_EQ(0U, freeSpace());
    HCONTAINER container = nullptr;
    EXPECT_EQ(SAR_NO_ROOM, SKF_CreateContainer(application, text("one"), &container));
    EXPECT_EQ(SAR_OK, write("big", before - 49, {1})) << "what is there may change";
    EXPECT_EQ(SAR_OK, SKF_DeleteFile(application, text("big")));
    EXPECT_EQ(before, freeSpace());
}

class Key {
public:
    Key(DEVHANDLE device, ULONG algorithm) {
        BYTE key[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                        0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};
        EXPECT_EQ(SAR_OK, SKF_SetSymmKey(device, key, algorithm, &handle_));
    }
    ~Key() { SKF_CloseHandle(handle_); }
    HANDLE handle() const { return handle_; }

    ULONG run(bool encrypt, const BLOCKCIPHERPARAM &param, Bytes in, Bytes &out) {
        const ULONG started =
            encrypt ? SKF_EncryptInit(handle_, param) : SKF_DecryptInit(handle_, param);
        out.assign(in.size() + 16, 0);
        auto length = static_cast<ULONG>(out.size());
        const auto inLength = static_cast<ULONG>(in.size());
        const ULONG result = encrypt
                                 ? SKF_Encrypt(handle_, in.data(), inLength, out.data(), &length)
                                 : SKF_Decrypt(handle_, in.data(), inLength, out.data(), &length);
        out.resize(result == SAR_OK ? length : 0);
        return started != SAR_OK ? started : result;
    }

private:
    HANDLE handle_ = nullptr;
};

TEST_F(TokenServices, Sms4WorksInEveryModeAndPadding) {
    const Bytes block = *crypto::fromHex("0123456789abcdeffedcba9876543210");
    const Bytes published = *crypto::fromHex("681edf34d206965e86b3e94f536e4246");
    BLOCKCIPHERPARAM plainEcb = {};
    Key ecb(device, SGD_SMS4_ECB);
    Bytes out;
    Bytes back;
    EXPECT_EQ(SAR_OK, ecb.run(true, plainEcb, block, out));
    EXPECT_EQ(published, out);
    EXPECT_NE(SAR_OK, SKF_Encrypt(ecb.handle(), out.data(), 16, out.data(), nullptr));
    Key cbc(device, SGD_SMS4_CBC);
    EXPECT_NE(SAR_OK, SKF_EncryptInit(cbc.handle(), plainEcb)) << "no IV";
    for (const ULONG padding : {0U, 1U}) {
        for (const std::size_t size : {0, 1, 15, 16, 17, 1024}) {
            SCOPED_TRACE(size);
            BLOCKCIPHERPARAM param = {};
            param.IVLen = 16;
            param.IV[3] = 9;
            param.PaddingType = padding;
            const Bytes plain(size, 0x77);
            for (Key *key : {&ecb, &cbc}) {
                const bool fits = padding == 1 || size % 16 == 0;
                EXPECT_EQ(fits ? SAR_OK : SAR_INDATALENERR, key->run(true, param, plain, out));
                if (fits) {
                    EXPECT_EQ(padding == 1 ? size / 16 * 16 + 16 : size, out.size());
                    EXPECT_EQ(SAR_OK, key->run(false, param, out, back));
                    EXPECT_EQ(plain, back);
                }
            }
        }
    }
    BYTE key[16] = {};
    HANDLE handle = nullptr;
    for (const ULONG algorithm : {SGD_SM1_ECB, SGD_SM1_CBC, SGD_SSF33_ECB, SGD_SSF33_CBC}) {
        EXPECT_EQ(SAR_NOTSUPPORTYETERR, SKF_SetSymmKey(device, key, algorithm, &handle));
    }
}

TEST_F(TokenServices, DigestsTakePiecesAndASigner) {
    ECCPUBLICKEYBLOB signer = {};
    login();
    SKF_CloseContainer(createSm2("sm2", &signer));
    std::string id(crypto::sm2DefaultSignerId);
    Bytes message(1000, 0x61);
    for (const bool signedDigest : {false, true}) {
        HANDLE handle = nullptr;
        ASSERT_EQ(SAR_OK,
                  SKF_DigestInit(device, SGD_SM3, signedDigest ? &signer : nullptr,
                                 reinterpret_cast<BYTE *>(id.data()),
                                 signedDigest ? static_cast<ULONG>(id.size()) : 0, &handle));
        for (ULONG at = 0; at < 1000; at += 250) {
            EXPECT_EQ(SAR_OK, SKF_DigestUpdate(handle, message.data() + at, 250));
        }
        std::array<BYTE, 32> value{};
        ULONG length = 31;
        EXPECT_EQ(SAR_BUFFER_TOO_SMALL, SKF_DigestFinal(handle, value.data(), &length));
        EXPECT_EQ(SAR_OK, SKF_DigestFinal(handle, value.data(), &length));
        EXPECT_EQ(signedDigest ? *crypto::sm2MessageDigest(publicKey(signer), message)
                               : crypto::sm3(message),
                  value);
        EXPECT_NE(SAR_OK, SKF_DigestUpdate(handle, message.data(), 1));
        EXPECT_EQ(SAR_OK, SKF_CloseHandle(handle));
        EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_CloseHandle(handle));
    }
}

} // namespace
} // namespace tembra::test
