// Handles that are wrong, stale or unplugged, and pointers that are null.
#include "token_fixture.h"

#include <array>
#include <cstring>
#include <functional>
#include <tuple>

namespace tembra::test {
namespace {

constexpr int NONE = -1;

// A function called with a handle; leftOut is the number of the pointer that is null, or NONE.
struct Function {
    const char *name;
    int pointers;
    std::function<ULONG(HANDLE, int leftOut)> call;
};

// Makes the other arguments from their types: the same number for all numbers, and memory of its
// own for each pointer, which contains the user's PIN.
template <typename... Others>
Function madeUp(const char *name, ULONG (*function)(HANDLE, Others...), int number = 1) {
    const auto call = [=](HANDLE handle, int leftOut) {
        std::array<std::array<BYTE, 1024>, 6> memory = {};
        auto next = memory.begin();
        [[maybe_unused]] const auto made = [&](auto argument) {
            using Argument = decltype(argument);
            if constexpr (std::is_integral_v<Argument>) {
                argument = static_cast<Argument>(number);
            } else if constexpr (std::is_pointer_v<Argument>) {
                auto &own = *next++;
                own.fill(1); // lengths inside are not zero
                std::memcpy(own.data(), "111111", 7);
                if (leftOut-- != 0)
                    argument = reinterpret_cast<Argument>(own.data());
            }
            return argument;
        };
        return std::apply(function, std::tuple<HANDLE, Others...>{handle, made(Others{})...});
    };
    return {name, (0 + ... + int{std::is_pointer_v<Others>}), call};
}
#define SKF(function) madeUp(#function, SKF_##function)

class TokenHandles : public TokenTest {
protected:
    void SetUp() override {
        BYTE bytes[16] = {};
        login();
        m_container = createSm2("container");
        ASSERT_EQ(SAR_OK, SKF_ImportCertificate(m_container, 1, bytes, 1));
        ASSERT_EQ(SAR_OK, SKF_CreateFile(m_application, text("111111"), 2, 0xFF, 0xFF));
        ASSERT_EQ(SAR_OK, SKF_SetSymmKey(m_device, bytes, SGD_SMS4_ECB, &m_key));
        ASSERT_EQ(SAR_OK, SKF_EncryptInit(m_key, {}));
        ASSERT_EQ(SAR_OK, SKF_DecryptInit(m_key, {}));
        ASSERT_EQ(SAR_OK, SKF_DigestInit(m_device, SGD_SM3, nullptr, nullptr, 0, &m_digest));
    }
    void TearDown() override {
        SKF_CloseHandle(m_key);
        SKF_CloseHandle(m_digest);
    }
    static void expectAll(const std::vector<Function> &functions, HANDLE handle, ULONG result) {
        for (const Function &function : functions)
            EXPECT_EQ(result, function.call(handle, NONE)) << function.name;
    }
    void expectAll(ULONG result) {
        for (const auto &[handle, functions] : m_kinds)
            expectAll(functions, handle, result);
    }

    HCONTAINER m_container = nullptr;
    HANDLE m_key = nullptr;
    HANDLE m_digest = nullptr;
    HANDLE m_unused = nullptr;

    // All functions that take a handle, except those that close or unlock.
    const std::pair<const HANDLE &, std::vector<Function>> m_kinds[5] = {
        {m_device,
         {SKF(LockDev), SKF(GetDevInfo), SKF(EnumApplication), SKF(OpenApplication), SKF(GenRandom),
          madeUp("DevAuth", SKF_DevAuth, 16), madeUp("SetSymmKey", SKF_SetSymmKey, SGD_SMS4_ECB),
          SKF(DigestInit)}},
        {m_application,
         {SKF(ClearSecureState), SKF(EnumContainer), SKF(CreateContainer), SKF(DeleteContainer),
          SKF(OpenContainer), SKF(VerifyPIN), SKF(ChangePIN), SKF(UnblockPIN), SKF(GetPINInfo),
          SKF(EnumFiles), SKF(CreateFile), SKF(DeleteFile), SKF(GetFileInfo), SKF(ReadFile),
          SKF(WriteFile)}},
        {m_container,
         {SKF(GetContainerType), SKF(ExportPublicKey), SKF(ExportCertificate),
          SKF(ImportCertificate), SKF(GenRSAKeyPair),
          madeUp("GenECCKeyPair", SKF_GenECCKeyPair, SGD_SM2_1), SKF(ImportECCKeyPair),
          SKF(ImportRSAKeyPair), SKF(RSASignData), SKF(ECCSignData), SKF(RSADecrypt),
          SKF(ECCDecrypt)}},
        {m_key,
         {SKF(EncryptInit), madeUp("Encrypt", SKF_Encrypt, 16), SKF(DecryptInit),
          madeUp("Decrypt", SKF_Decrypt, 16)}},
        {m_digest, {SKF(DigestUpdate), SKF(DigestFinal)}}};
};

TEST_F(TokenHandles, NeverOpenedOrOfAnotherKindAreRefused) {
    int local = 0;
    for (const HANDLE wrong : {HANDLE{nullptr}, HANDLE{&local}, reinterpret_cast<HANDLE>(-1),
                               m_device, m_application, m_container, m_key, m_digest}) {
        for (const auto &[right, functions] : m_kinds)
            if (wrong != right)
                expectAll(functions, wrong, SAR_INVALIDHANDLEERR);
    }
    const std::vector<Function> closing = {SKF(UnlockDev), SKF(DisConnectDev),
                                           SKF(CloseApplication), SKF(CloseContainer)};
    for (const HANDLE wrong : {HANDLE{nullptr}, HANDLE{&local}, m_key})
        expectAll(closing, wrong, SAR_INVALIDHANDLEERR);
    EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_CloseHandle(m_device));
}

TEST_F(TokenHandles, PointersThatAreNullAreRefused) {
    std::string accepted;
    for (const auto &[handle, functions] : m_kinds) {
        for (const Function &function : functions) {
            for (int pointer = 0; pointer < function.pointers; ++pointer)
                if (function.call(handle, pointer) != SAR_INVALIDPARAMERR)
                    accepted += function.name + (" " + std::to_string(pointer)) + ", ";
        }
    }
    // Buffers, when the length is all that is asked for, and the tries left of a PIN; and with RSA
    // all of them, since the container has no such key and that is seen first.
    EXPECT_EQ(accepted,
              "EnumApplication 0, EnumContainer 0, VerifyPIN 1, ChangePIN 2, UnblockPIN 2, "
              "GetPINInfo 0, GetPINInfo 1, GetPINInfo 2, EnumFiles 0, ReadFile 1, "
              "ExportPublicKey 0, ExportCertificate 0, RSASignData 0, RSASignData 1, "
              "RSASignData 2, RSADecrypt 0, RSADecrypt 1, RSADecrypt 2, ECCDecrypt 1, "
              "Encrypt 1, Decrypt 1, DigestFinal 0, ");
    EXPECT_EQ(SAR_INVALIDPARAMERR, SKF_EnumDev(1, nullptr, nullptr));
    EXPECT_EQ(SAR_INVALIDPARAMERR, SKF_ConnectDev(nullptr, &m_unused));
    EXPECT_EQ(SAR_INVALIDPARAMERR, SKF_ConnectDev(m_name.data(), nullptr));
    EXPECT_EQ(SAR_INVALIDPARAMERR,
              SKF_GenRandom(m_device, reinterpret_cast<BYTE *>(&m_unused), ~0U));
}

TEST_F(TokenHandles, GoStaleWithWhatTheyStandForAndStillCloseOnce) {
    EXPECT_EQ(SAR_OK, SKF_DeleteContainer(m_application, text("container")));
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(create("container"))); // a new one of the same name
    expectAll(m_kinds[2].second, m_container, SAR_INVALIDHANDLEERR);
    EXPECT_EQ(SAR_OK, SKF_CloseContainer(m_container));
    EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_CloseContainer(m_container));
    m_container = openContainer("container");
    EXPECT_EQ(SAR_OK, SKF_DisConnectDev(m_device));
    expectAll(SAR_INVALIDHANDLEERR);
    EXPECT_EQ(SAR_INVALIDHANDLEERR, SKF_UnlockDev(m_device));
    EXPECT_EQ(4U, TembraSoftTokenOpenHandles(nullptr));
    EXPECT_EQ(1U, TembraSoftTokenOpenHandles("container"));
}

TEST_F(TokenHandles, OfATokenThatIsUnpluggedStayDeadWhenItIsBack) {
    EXPECT_EQ(SAR_OK, TembraSoftTokenUnplug(m_name.c_str()));
    expectAll(SAR_DEVICE_REMOVED);
    EXPECT_EQ(SAR_DEVICE_REMOVED, SKF_ConnectDev(m_name.data(), &m_unused));
    EXPECT_EQ(SAR_OK, TembraSoftTokenPlug(m_name.c_str()));
    expectAll(SAR_DEVICE_REMOVED);
    TearDown();
    close();
    open();
    EXPECT_EQ(SAR_OK, TembraSoftTokenRemove(m_name.c_str()));
    EXPECT_EQ(SAR_DEVICE_REMOVED, SKF_ClearSecureState(m_application));
    EXPECT_TRUE(std::filesystem::is_empty(m_directory.path())) << "nothing is left behind";
}

} // namespace
} // namespace tembra::test
