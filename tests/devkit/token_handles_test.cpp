// Handles that are wrong, stale, unplugged or used by many threads.
#include "token_fixture.h"

#include "tembra_devkit_faults.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <thread>
#include <tuple>

namespace tembra::test {
namespace {

using testing::AnyOf;

// What the functions take beside their handle, right where that is possible.
struct Arguments {
    union {
        BYTE bytes[512] = {};
        DEVINFO device;
        FILEATTRIBUTE file;
        RSAPUBLICKEYBLOB rsa;
        ECCPUBLICKEYBLOB sm2;
        ENVELOPEDKEYBLOB envelope;
        ECCSIGNATUREBLOB signature;
        ECCCIPHERBLOB cipher;
    };
    ULONG size = sizeof bytes;
    ULONG number = 0;
    HANDLE handle = nullptr;
};

// A function with all its arguments but the handle. The pointers that must not be null can be left
// out; those that may be are null from the start.
struct Function {
    std::function<ULONG(HANDLE, int leftOut)> call;
    int pointers;
};

Function with(auto function, auto... arguments) {
    const auto call = [=](HANDLE handle, int leftOut) {
        [[maybe_unused]] const auto given = [&](auto argument) {
            if constexpr (std::is_pointer_v<decltype(argument)>) {
                return leftOut-- == 0 ? nullptr : argument;
            } else {
                return argument;
            }
        };
        return std::apply(function, std::tuple{handle, given(arguments)...});
    };
    return {call, (0 + ... + int{std::is_pointer_v<decltype(arguments)>})};
}

class TokenHandles : public TokenTest {
protected:
    void SetUp() override {
        login();
        container = createSm2("container");
        a.cipher.CipherLen = 1;
        ASSERT_EQ(SAR_OK, SKF_ImportCertificate(container, 1, a.bytes, 1));
        ASSERT_EQ(SAR_OK, SKF_CreateFile(application, other, 1, 0xFF, 0xFF));
        ASSERT_EQ(SAR_OK, SKF_SetSymmKey(device, a.bytes, SGD_SMS4_ECB, &key));
        ASSERT_EQ(SAR_OK, SKF_EncryptInit(key, {}));
        ASSERT_EQ(SAR_OK, SKF_DecryptInit(key, {}));
        ASSERT_EQ(SAR_OK, SKF_DigestInit(device, SGD_SM3, nullptr, nullptr, 0, &digest));
    }
    void TearDown() override {
        SKF_CloseContainer(container);
        SKF_CloseHandle(key);
        SKF_CloseHandle(digest);
    }
    // What all these functions answer.
    void expectAll(const std::vector<Function> &functions, HANDLE handle, ULONG result) {
        for (std::size_t i = 0; i < functions.size(); ++i) {
            a.size = sizeof a.bytes;
            EXPECT_EQ(result, functions[i].call(handle, -1)) << "function " << i;
        }
    }
    void expectAll(ULONG result) {
        for (const Kind &kind : kinds) {
            expectAll(kind.functions, kind.handle, result);
        }
    }

    Arguments a;
    HCONTAINER container = nullptr;
    HANDLE key = nullptr;
    HANDLE digest = nullptr;
    char *const other = text("name-1");

    // Every function that takes a handle, but for those that close or unlock.
    struct Kind {
        const HANDLE &handle;
        std::vector<Function> functions;
    };
    const Kind kinds[5] = {
        {device,
         {with(SKF_LockDev, 0u), with(SKF_GetDevInfo, &a.device),
          with(SKF_EnumApplication, nullptr, &a.size),
          with(SKF_OpenApplication, text("APP"), &a.handle), with(SKF_GenRandom, a.bytes, 8u),
          with(SKF_DevAuth, a.bytes, 16u), with(SKF_SetSymmKey, a.bytes, SGD_SMS4_ECB, &a.handle),
          with(SKF_DigestInit, SGD_SM3, nullptr, nullptr, 0u, &a.handle)}},
        {application,
         {with(SKF_ClearSecureState), with(SKF_EnumContainer, nullptr, &a.size),
          with(SKF_CreateContainer, other, &a.handle), with(SKF_DeleteContainer, other),
          with(SKF_OpenContainer, other, &a.handle),
          with(SKF_VerifyPIN, USER_TYPE, text(userPin), nullptr),
          with(SKF_ChangePIN, USER_TYPE, text(userPin), other, nullptr),
          with(SKF_UnblockPIN, text(adminPin), other, nullptr),
          with(SKF_GetPINInfo, USER_TYPE, nullptr, nullptr, nullptr),
          with(SKF_EnumFiles, nullptr, &a.size), with(SKF_CreateFile, other, 1u, 0xFFu, 0xFFu),
          with(SKF_DeleteFile, other), with(SKF_GetFileInfo, other, &a.file),
          with(SKF_ReadFile, other, 0u, 0u, nullptr, &a.size),
          with(SKF_WriteFile, other, 0u, a.bytes, 1u)}},
        {container,
         {with(SKF_GetContainerType, &a.number), with(SKF_ExportPublicKey, 1, nullptr, &a.size),
          with(SKF_ExportCertificate, 1, nullptr, &a.size),
          with(SKF_ImportCertificate, 1, a.bytes, 1u), with(SKF_GenRSAKeyPair, 1024u, &a.rsa),
          with(SKF_GenECCKeyPair, SGD_SM2_1, &a.sm2), with(SKF_ImportECCKeyPair, &a.envelope),
          with(SKF_ImportRSAKeyPair, SGD_SMS4_ECB, a.bytes, 128u, a.bytes, 16u),
          with(SKF_RSASignData, a.bytes, 32u, nullptr, &a.size),
          with(SKF_ECCSignData, a.bytes, 32u, &a.signature),
          with(SKF_RSADecrypt, 1, a.bytes, 128u, nullptr, &a.size),
          with(SKF_ECCDecrypt, 1, &a.cipher, nullptr, &a.size)}},
        {key,
         {with(SKF_EncryptInit, BLOCKCIPHERPARAM{}),
          with(SKF_Encrypt, a.bytes, 16u, nullptr, &a.size),
          with(SKF_DecryptInit, BLOCKCIPHERPARAM{}),
          with(SKF_Decrypt, a.bytes, 16u, nullptr, &a.size)}},
        {digest, {with(SKF_DigestUpdate, a.bytes, 1u), with(SKF_DigestFinal, nullptr, &a.size)}}};
};

TEST_F(TokenHandles, NeverOpenedOrOfAnotherKindAreRefused) {
    int local = 0;
    for (const HANDLE wrong : {HANDLE{nullptr}, HANDLE{&local}, reinterpret_cast<HANDLE>(-1),
                               device, application, container, key, digest}) {
        for (const Kind &kind : kinds) {
            if (wrong != kind.handle) {
                expectAll(kind.functions, wrong, SAR_INVALIDHANDLEERR);
            }
        }
    }
    for (const HANDLE wrong :
         {HANDLE{nullptr}, HANDLE{&local}, reinterpret_cast<HANDLE>(-1), key}) {
        expectAll({with(SKF_UnlockDev), with(SKF_DisConnectDev), with(SKF_CloseApplication),
                   with(SKF_CloseContainer)},
                  wrong, SAR_INVALIDHANDLEERR);
    }
    EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_CloseHandle(device));
}

TEST_F(TokenHandles, NullPointersAreRefused) {
    for (const Kind &kind : kinds) {
        for (std::size_t i = 0; i < kind.functions.size(); ++i) {
            for (int pointer = 0; pointer < kind.functions[i].pointers; ++pointer) {
                // For RSA the container has no key, which is seen first.
                EXPECT_THAT(kind.functions[i].call(kind.handle, pointer),
                            AnyOf(SAR_INVALIDPARAMERR, SAR_KEYNOTFOUNTERR))
                    << "kind " << (&kind - kinds) << " function " << i << " pointer " << pointer;
            }
        }
    }
    EXPECT_EQ(SAR_INVALIDPARAMERR, SKF_EnumDev(1, nullptr, nullptr));
    EXPECT_EQ(SAR_INVALIDPARAMERR, SKF_ConnectDev(nullptr, &a.handle));
    EXPECT_EQ(SAR_INVALIDPARAMERR, SKF_ConnectDev(name.data(), nullptr));
    EXPECT_EQ(SAR_INVALIDPARAMERR, SKF_GenRandom(device, a.bytes, 0xFFFFFFFF));
    EXPECT_EQ(SAR_INVALIDPARAMERR, SKF_DigestInit(device, SGD_SM3, nullptr, a.bytes, 16, &a.handle))
        << "id of nobody";
}

TEST_F(TokenHandles, GoStaleWithWhatTheyStandForAndStillCloseOnce) {
    EXPECT_EQ(SAR_OK, SKF_DeleteContainer(application, text("container")));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(create("container"))); // a new one of the same name
    expectAll(kinds[2].functions, container, SAR_INVALIDHANDLEERR);
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
    EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_CloseContainer(container));
    container = openContainer("container");
    EXPECT_EQ(SAR_OK, SKF_DisConnectDev(device));
    expectAll(SAR_INVALIDHANDLEERR);
    EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_UnlockDev(device));
    EXPECT_EQ(4U, TembraSoftTokenOpenHandles(nullptr));
    EXPECT_EQ(1U, TembraSoftTokenOpenHandles("container"));
}

TEST_F(TokenHandles, OfATokenThatIsUnpluggedStayDeadWhenItIsBack) {
    EXPECT_EQ(SAR_OK, TembraSoftTokenUnplug(name.c_str()));
    expectAll(SAR_DEVICE_REMOVED);
    EXPECT_EQ(SAR_DEVICE_REMOVED, SKF_ConnectDev(name.data(), &a.handle));
    EXPECT_EQ(SAR_OK, TembraSoftTokenPlug(name.c_str()));
    expectAll(SAR_DEVICE_REMOVED);
    TearDown();
    close();
    open();
    EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, SKF_CreateContainer(application, text("x"), &a.handle));
    EXPECT_EQ(SAR_OK, TembraSoftTokenRemove(name.c_str()));
    EXPECT_EQ(SAR_DEVICE_REMOVED, SKF_ClearSecureState(application));
    EXPECT_TRUE(std::filesystem::is_empty(directory.path())) << "nothing is left behind";
}

TEST_F(TokenHandles, FaultPlanAndJournalSeeEveryCall) {
    const auto journal = directory.path() / "journal";
    ASSERT_EQ(1, TembraSoftTokenSetJournal(journal.string().c_str()));
    ASSERT_EQ(1, TembraSoftTokenSetFaults("SKF_GetContainerType:2=0x0A000001"));
    EXPECT_EQ(SAR_OK, SKF_GetContainerType(container, &a.number));
    EXPECT_EQ(SAR_FAIL, SKF_GetContainerType(container, &a.number));
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
        check(SKF_CreateContainer(application, text(own), &mine));
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
            check(showPin(USER_TYPE, userPin));
        }
        check(SKF_CloseContainer(mine));
        check(SKF_DeleteContainer(application, text(own)));
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
