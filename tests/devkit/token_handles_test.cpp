// Handles that are wrong, stale, unplugged or used by many threads.
#include "token_fixture.h"

#include "tembra_devkit_faults.h"

#include "crypto/sm2_sign.h"

#include <atomic>
#include <functional>
#include <thread>

namespace tembra::test {
namespace {

using Function = std::function<ULONG(HANDLE)>;

// Every function that takes a handle, with arguments that are right where that is possible.
struct Arguments {
    ULONG number = 0;
    BYTE bytes[512] = {};
    ULONG size = sizeof bytes;
    LPSTR name = text("name-1");
    HANDLE handle = nullptr;
};

std::vector<Function> deviceFunctions(Arguments &a) {
    return {
        [&](HANDLE h) { return SKF_LockDev(h, 0); },
        [&](HANDLE h) { return SKF_UnlockDev(h); },
        [&](HANDLE h) { return SKF_GetDevInfo(h, reinterpret_cast<DEVINFO *>(a.bytes)); },
        [&](HANDLE h) { return SKF_EnumApplication(h, nullptr, &a.size); },
        [&](HANDLE h) { return SKF_OpenApplication(h, text("APP"), &a.handle); },
        [&](HANDLE h) { return SKF_GenRandom(h, a.bytes, 8); },
        [&](HANDLE h) { return SKF_DevAuth(h, a.bytes, 16); },
        [&](HANDLE h) { return SKF_SetSymmKey(h, a.bytes, SGD_SMS4_ECB, &a.handle); },
        [&](HANDLE h) { return SKF_DigestInit(h, SGD_SM3, nullptr, nullptr, 0, &a.handle); },
    };
}

std::vector<Function> applicationFunctions(Arguments &a) {
    return {
        [&](HANDLE h) { return SKF_ClearSecureState(h); },
        [&](HANDLE h) { return SKF_EnumContainer(h, nullptr, &a.size); },
        [&](HANDLE h) { return SKF_CreateContainer(h, a.name, &a.handle); },
        [&](HANDLE h) { return SKF_DeleteContainer(h, a.name); },
        [&](HANDLE h) { return SKF_OpenContainer(h, a.name, &a.handle); },
        [&](HANDLE h) { return SKF_VerifyPIN(h, USER_TYPE, text("111111"), nullptr); },
        [&](HANDLE h) { return SKF_ChangePIN(h, USER_TYPE, a.name, a.name, nullptr); },
        [&](HANDLE h) { return SKF_UnblockPIN(h, a.name, a.name, nullptr); },
        [&](HANDLE h) { return SKF_GetPINInfo(h, USER_TYPE, nullptr, nullptr, nullptr); },
        [&](HANDLE h) { return SKF_EnumFiles(h, nullptr, &a.size); },
        [&](HANDLE h) { return SKF_CreateFile(h, a.name, 1, 0xFF, 0xFF); },
        [&](HANDLE h) { return SKF_DeleteFile(h, a.name); },
        [&](HANDLE h) {
            return SKF_GetFileInfo(h, a.name, reinterpret_cast<FILEATTRIBUTE *>(a.bytes));
        },
        [&](HANDLE h) { return SKF_ReadFile(h, a.name, 0, 0, a.bytes, &a.size); },
        [&](HANDLE h) { return SKF_WriteFile(h, a.name, 0, a.bytes, 0); },
    };
}

std::vector<Function> containerFunctions(Arguments &a) {
    return {
        [&](HANDLE h) { return SKF_GetContainerType(h, &a.number); },
        [&](HANDLE h) { return SKF_ExportPublicKey(h, 1, a.bytes, &a.size); },
        [&](HANDLE h) { return SKF_ExportCertificate(h, 1, a.bytes, &a.size); },
        [&](HANDLE h) { return SKF_ImportCertificate(h, 1, a.bytes, 1); },
        [&](HANDLE h) {
            return SKF_GenRSAKeyPair(h, 1024, reinterpret_cast<RSAPUBLICKEYBLOB *>(a.bytes));
        },
        [&](HANDLE h) {
            return SKF_GenECCKeyPair(h, SGD_SM2_1, reinterpret_cast<ECCPUBLICKEYBLOB *>(a.bytes));
        },
        [&](HANDLE h) {
            return SKF_ImportECCKeyPair(h, reinterpret_cast<ENVELOPEDKEYBLOB *>(a.bytes));
        },
        [&](HANDLE h) { return SKF_ImportRSAKeyPair(h, SGD_SMS4_ECB, a.bytes, 128, a.bytes, 16); },
        [&](HANDLE h) { return SKF_RSASignData(h, a.bytes, 32, a.bytes, &a.size); },
        [&](HANDLE h) {
            return SKF_ECCSignData(h, a.bytes, 32, reinterpret_cast<ECCSIGNATUREBLOB *>(a.bytes));
        },
        [&](HANDLE h) { return SKF_RSADecrypt(h, 1, a.bytes, 128, a.bytes, &a.size); },
        [&](HANDLE h) {
            return SKF_ECCDecrypt(h, 1, reinterpret_cast<ECCCIPHERBLOB *>(a.bytes), a.bytes,
                                  &a.size);
        },
    };
}

std::vector<Function> keyFunctions(Arguments &a) {
    return {
        [&](HANDLE h) { return SKF_EncryptInit(h, {}); },
        [&](HANDLE h) { return SKF_Encrypt(h, a.bytes, 16, a.bytes, &a.size); },
        [&](HANDLE h) { return SKF_DecryptInit(h, {}); },
        [&](HANDLE h) { return SKF_Decrypt(h, a.bytes, 16, a.bytes, &a.size); },
    };
}

std::vector<Function> digestFunctions(Arguments &a) {
    return {
        [&](HANDLE h) { return SKF_DigestUpdate(h, a.bytes, 1); },
        [&](HANDLE h) { return SKF_DigestFinal(h, a.bytes, &a.size); },
    };
}

class TokenHandles : public TokenTest {
protected:
    void SetUp() override {
        login();
        container = createSm2("container");
        ASSERT_EQ(SAR_OK, SKF_SetSymmKey(device, arguments.bytes, SGD_SMS4_ECB, &key));
        ASSERT_EQ(SAR_OK, SKF_DigestInit(device, SGD_SM3, nullptr, nullptr, 0, &digest));
    }
    void TearDown() override {
        SKF_CloseContainer(container);
        SKF_CloseHandle(key);
        SKF_CloseHandle(digest);
    }
    // What all functions of the handle's kind answer.
    void expectAll(const std::vector<Function> &functions, HANDLE handle, ULONG result) {
        for (std::size_t i = 0; i < functions.size(); ++i) {
            arguments.size = sizeof arguments.bytes;
            EXPECT_EQ(result, functions[i](handle)) << "function " << i;
        }
    }
    void expectAll(ULONG result) {
        expectAll(deviceFunctions(arguments), device, result);
        expectAll(applicationFunctions(arguments), application, result);
        expectAll(containerFunctions(arguments), container, result);
        expectAll(keyFunctions(arguments), key, result);
        expectAll(digestFunctions(arguments), digest, result);
    }

    Arguments arguments;
    HCONTAINER container = nullptr;
    HANDLE key = nullptr;
    HANDLE digest = nullptr;
};

TEST_F(TokenHandles, NeverOpenedOrOfAnotherKindAreRefused) {
    int local = 0;
    for (HANDLE wrong :
         {HANDLE{nullptr}, HANDLE{&local}, reinterpret_cast<HANDLE>(-1), HANDLE{key}}) {
        expectAll(deviceFunctions(arguments), wrong, SAR_INVALIDHANDLEERR);
        expectAll(applicationFunctions(arguments), wrong, SAR_INVALIDHANDLEERR);
        expectAll(containerFunctions(arguments), wrong, SAR_INVALIDHANDLEERR);
        expectAll(digestFunctions(arguments), wrong, SAR_INVALIDHANDLEERR);
        expectAll({SKF_DisConnectDev, SKF_CloseApplication, SKF_CloseContainer}, wrong,
                  SAR_INVALIDHANDLEERR);
    }
    expectAll(keyFunctions(arguments), device, SAR_INVALIDHANDLEERR);
    EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_CloseHandle(device));
}

TEST_F(TokenHandles, NullPointersAreRefused) {
    const ULONG results[] = {
        SKF_EnumDev(1, nullptr, nullptr),
        SKF_ConnectDev(nullptr, &arguments.handle),
        SKF_ConnectDev(name.data(), nullptr),
        SKF_GetDevInfo(device, nullptr),
        SKF_EnumApplication(device, nullptr, nullptr),
        SKF_OpenApplication(device, nullptr, &arguments.handle),
        SKF_OpenApplication(device, text("APP"), nullptr),
        SKF_EnumContainer(application, nullptr, nullptr),
        SKF_CreateContainer(application, nullptr, &arguments.handle),
        SKF_CreateContainer(application, text("x"), nullptr),
        SKF_DeleteContainer(application, nullptr),
        SKF_OpenContainer(application, nullptr, &arguments.handle),
        SKF_OpenContainer(application, text("container"), nullptr),
        SKF_GetContainerType(container, nullptr),
        SKF_ExportPublicKey(container, 1, nullptr, nullptr),
        SKF_ImportCertificate(container, 1, nullptr, 1),
        SKF_GenRSAKeyPair(container, 1024, nullptr),
        SKF_GenECCKeyPair(container, SGD_SM2_1, nullptr),
        SKF_ImportECCKeyPair(container, nullptr),
        SKF_ImportRSAKeyPair(container, SGD_SMS4_ECB, nullptr, 128, arguments.bytes, 16),
        SKF_ECCSignData(container, nullptr, 32, nullptr),
        SKF_ECCDecrypt(container, 1, nullptr, nullptr, nullptr),
        SKF_VerifyPIN(application, USER_TYPE, nullptr, nullptr),
        SKF_ChangePIN(application, USER_TYPE, nullptr, text("222222"), nullptr),
        SKF_ChangePIN(application, USER_TYPE, text("111111"), nullptr, nullptr),
        SKF_UnblockPIN(application, text("12345678"), nullptr, nullptr),
        SKF_GenRandom(device, nullptr, 1),
        SKF_GenRandom(device, arguments.bytes, 0xFFFFFFFF),
        SKF_DevAuth(device, nullptr, 16),
        SKF_SetSymmKey(device, nullptr, SGD_SMS4_ECB, &arguments.handle),
        SKF_SetSymmKey(device, arguments.bytes, SGD_SMS4_ECB, nullptr),
        SKF_DigestInit(device, SGD_SM3, nullptr, arguments.bytes, 16, &arguments.handle),
        SKF_DigestInit(device, SGD_SM3, nullptr, nullptr, 0, nullptr),
        SKF_DigestUpdate(digest, nullptr, 1),
        SKF_DigestFinal(digest, arguments.bytes, nullptr),
        SKF_CreateFile(application, nullptr, 1, 0xFF, 0xFF),
        SKF_GetFileInfo(application, text("x"), nullptr),
        SKF_WriteFile(application, text("x"), 0, nullptr, 1),
    };
    for (std::size_t i = 0; i < std::size(results); ++i) {
        EXPECT_EQ(SAR_INVALIDPARAMERR, results[i]) << "call " << i;
    }
}

TEST_F(TokenHandles, GoStaleWithWhatTheyStandForAndStillCloseOnce) {
    EXPECT_EQ(SAR_OK, SKF_DeleteContainer(application, text("container")));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(create("container"))); // a new one of the same name
    expectAll(containerFunctions(arguments), container, SAR_INVALIDHANDLEERR);
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
    EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_CloseContainer(container));
    ASSERT_EQ(SAR_OK, SKF_OpenContainer(application, text("container"), &container));
    EXPECT_EQ(SAR_OK, SKF_DisConnectDev(device));
    expectAll(SAR_INVALIDHANDLEERR);
    EXPECT_EQ(4U, TembraSoftTokenOpenHandles(nullptr));
    EXPECT_EQ(1U, TembraSoftTokenOpenHandles("container"));
}

TEST_F(TokenHandles, OfATokenThatIsUnpluggedStayDeadWhenItIsBack) {
    EXPECT_EQ(SAR_OK, TembraSoftTokenUnplug(name.c_str()));
    const auto exceptUnlock = [&](ULONG result) {
        auto functions = deviceFunctions(arguments);
        functions.erase(functions.begin() + 1);
        expectAll(functions, device, result);
        expectAll(applicationFunctions(arguments), application, result);
        expectAll(containerFunctions(arguments), container, result);
        expectAll(keyFunctions(arguments), key, result);
        expectAll(digestFunctions(arguments), digest, result);
    };
    exceptUnlock(SAR_DEVICE_REMOVED);
    EXPECT_EQ(SAR_DEVICE_REMOVED, SKF_ConnectDev(name.data(), &arguments.handle));
    EXPECT_EQ(SAR_OK, TembraSoftTokenPlug(name.c_str()));
    exceptUnlock(SAR_DEVICE_REMOVED);
    TearDown();
    close();
    open();
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN,
              SKF_CreateContainer(application, text("x"), &arguments.handle));
    EXPECT_EQ(SAR_OK, TembraSoftTokenRemove(name.c_str()));
    EXPECT_EQ(SAR_DEVICE_REMOVED, SKF_ClearSecureState(application));
    EXPECT_TRUE(std::filesystem::is_empty(directory.path())) << "nothing is left behind";
}

TEST_F(TokenHandles, FaultPlanAndJournalSeeEveryCall) {
    const auto journal = directory.path() / "journal";
    ASSERT_EQ(1, TembraSoftTokenSetJournal(journal.string().c_str()));
    ASSERT_EQ(1, TembraSoftTokenSetFaults("SKF_GetContainerType:2=0x0A000001"));
    EXPECT_EQ(SAR_OK, SKF_GetContainerType(container, &arguments.number));
    EXPECT_EQ(SAR_FAIL, SKF_GetContainerType(container, &arguments.number));
    login();
    EXPECT_EQ(3U, TembraSoftTokenCallCount(nullptr));
    TembraSoftTokenSetFaults(nullptr);
    TembraSoftTokenSetJournal(nullptr);
    const std::string lines = readFile(journal);
    EXPECT_NE(std::string::npos, lines.find("\"SKF_VerifyPIN\"")) << lines;
    EXPECT_EQ(std::string::npos, lines.find(userPin)) << lines;
}

TEST_F(TokenHandles, ServeManyThreadsAtOnce) {
    std::atomic<int> faults{0};
    const auto work = [&](int number) {
        const auto check = [&](ULONG result) { faults += result == SAR_OK ? 0 : 1; };
        const std::string own = "thread-" + std::to_string(number);
        HCONTAINER mine = nullptr;
        ECCPUBLICKEYBLOB blob = {};
        check(SKF_CreateContainer(application, text(own.c_str()), &mine));
        check(SKF_GenECCKeyPair(mine, SGD_SM2_1, &blob));
        for (int i = 0; i < 10; ++i) {
            HANDLE hash = nullptr;
            BYTE value[32] = {};
            ULONG length = sizeof value;
            ECCSIGNATUREBLOB signature = {};
            DEVINFO info = {};
            check(SKF_DigestInit(device, SGD_SM3, nullptr, nullptr, 0, &hash));
            check(SKF_DigestUpdate(hash, value, sizeof value));
            check(SKF_DigestFinal(hash, value, &length));
            check(SKF_CloseHandle(hash));
            check(SKF_ECCSignData(i % 2 == 0 ? mine : container, value, 32, &signature));
            check(SKF_LockDev(device, 1000));
            check(SKF_GetDevInfo(device, &info));
            check(SKF_UnlockDev(device));
            check(SKF_VerifyPIN(application, USER_TYPE, text(userPin), nullptr));
        }
        check(SKF_CloseContainer(mine));
        check(SKF_DeleteContainer(application, text(own.c_str())));
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; ++i) {
        threads.emplace_back(work, i);
    }
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, faults);
}

} // namespace
} // namespace tembra::test
