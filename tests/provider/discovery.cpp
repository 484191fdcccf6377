// DeviceGetAllDevices: what becomes of tokens, applications and containers, good and bad.
#include "scripted_test.h"

#include <algorithm>
#include <cstring>

namespace tembra::test {
namespace {

class Discovery : public ScriptedTest {
protected:
    void find() {
        mark();
        m_set = DeviceGetAllDevices();
        ASSERT_NE(m_set, nullptr);
    }
    int count() const { return DeviceGetDeviceCount(m_set); }
};

// Answers a list of names in place of the token.
auto names(const std::string &list, ULONG size) {
    return [list, size](auto, LPSTR out, ULONG *length) {
        std::copy_n(list.begin(), std::min<std::size_t>(list.size(), *length), out);
        *length = size;
        return SAR_OK;
    };
}

TEST_F(Discovery, EmptyMachineIsAnEmptySet) {
    const struct {
        const char *what;
        std::string list;
        ULONG size;
    } cases[] = {
        {"nothing", "", 0}, {"a lone NUL", std::string(1, '\0'), 1}, {"a length of 0", "key", 0}};
    for (const auto &at : cases) {
        script().SKF_EnumDev.run(names(at.list, at.size));
        find();
        EXPECT_EQ(count(), 0) << at.what;
        EXPECT_THAT(trace().failures(), IsEmpty()) << at.what;
        release();
    }
    EXPECT_EQ(script().SKF_EnumDev.argument<0>(), 1) << "present tokens only";
    EXPECT_EQ(script().SKF_ConnectDev.calls(), 0);
}

TEST_F(Discovery, ReadsEverythingOnce) {
    addToken({ecc("sm2", true, true), rsa("rsa", 2048, true, false), {"empty"}})
        .containers.front()
        .signCertificate = {1, 2, 3};
    find();
    EXPECT_EQ(count(), 1);
    EXPECT_THAT(callsSinceMark(),
                ElementsAre("SKF_EnumDev", "SKF_ConnectDev", "SKF_LockDev", "SKF_GetDevInfo",
                            "SKF_EnumApplication", "SKF_OpenApplication", "SKF_ClearSecureState",
                            "SKF_EnumContainer", "SKF_OpenContainer", "SKF_GetContainerType",
                            "SKF_ExportPublicKey", "OrvelPKICryptoEncodeECCPubKey",
                            "SKF_ExportCertificate", "SKF_ExportCertificate", "SKF_ExportPublicKey",
                            "OrvelPKICryptoEncodeECCPubKey", "SKF_ExportCertificate",
                            "SKF_OpenContainer", "SKF_GetContainerType", "SKF_ExportPublicKey",
                            "OrvelPKICryptoEncodeRSAPubKey", "SKF_ExportCertificate",
                            "SKF_ExportPublicKey", "SKF_OpenContainer", "SKF_GetContainerType",
                            "SKF_UnlockDev"));
    EXPECT_EQ(script().SKF_LockDev.argument<1>(), 0xFFFFFFFFu);
}

TEST_F(Discovery, TokenWithoutApplicationIsUnformatted) {
    script().memory.addDevice("blank");
    find();
    EXPECT_EQ(trace().failures(), errors("addDevice", "appNameLen == 0 || appNameList[0] == 0"));
    EXPECT_EQ(callsSinceMark().back(), "SKF_UnlockDev");
    m_device = DeviceGetDevice(m_set, 0);
    char serial[64];
    EXPECT_EQ(DeviceGetSerialNumber(m_device, serial, sizeof serial, nullptr), 1);
    EXPECT_STREQ(serial, "TEST-0123456789A");
    EXPECT_EQ(DeviceGetKeypairCount(m_device), 0);
    mark();
    release();
    EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_CloseApplication", "SKF_DisConnectDev"));
    EXPECT_EQ(script().SKF_CloseApplication.argument<0>(), nullptr);
}

TEST_F(Discovery, ApplicationsThatDoNotOpenAreSkippedInSilence) {
    addToken({});
    script().memory.devices.front().applications.emplace_back().name = "second";
    script().SKF_OpenApplication.answerAt(1, SAR_FAIL);
    find();
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(script().SKF_ClearSecureState.calls(), 1);
    release();
    script().SKF_OpenApplication.answer(SAR_FAIL);
    find();
    EXPECT_EQ(count(), 0);
    EXPECT_THAT(trace().failures(), IsEmpty());
    EXPECT_EQ(script().memory.open(HandleKind::device), 1) << "the token stays connected";
    keepsHandlesOpen();
}

TEST_F(Discovery, ApplicationsShareTheirToken) {
    addToken({});
    script().memory.devices.front().applications.emplace_back().name = "second";
    find();
    ASSERT_EQ(count(), 2);
    EXPECT_EQ(script().SKF_ConnectDev.calls(), 1);
    SPI_DEVICE_HANDLE first = DeviceGetDevice(m_set, 0);
    m_device = DeviceGetDevice(m_set, 1);
    DeviceFreeDevices(m_set);
    m_set = nullptr;
    mark();
    EXPECT_EQ(DeviceFreeDevice(first), 1);
    EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_CloseApplication", "SKF_DisConnectDev"));
    unsigned char byte = 0;
    EXPECT_EQ(DeviceGenerateRandom(m_device, 1, &byte), 0) << "disconnected under the other";
}

TEST_F(Discovery, TokenHandleOfZeroIsAHandle) {
    addToken({});
    TokenScript &token = script();
    DEVHANDLE real = nullptr;
    token.SKF_ConnectDev.run([&](LPSTR name, DEVHANDLE *handle) {
        *handle = nullptr;
        return token.SKF_ConnectDev.usual(name, &real);
    });
    token.SKF_LockDev.run([&](auto, ULONG time) { return token.SKF_LockDev.usual(real, time); });
    token.SKF_GetDevInfo.run(
        [&](auto, DEVINFO *info) { return token.SKF_GetDevInfo.usual(real, info); });
    token.SKF_EnumApplication.run([&](auto, LPSTR list, ULONG *size) {
        return token.SKF_EnumApplication.usual(real, list, size);
    });
    token.SKF_OpenApplication.run([&](auto, LPSTR name, HAPPLICATION *application) {
        return token.SKF_OpenApplication.usual(real, name, application);
    });
    token.SKF_UnlockDev.run([&](auto) { return token.SKF_UnlockDev.usual(real); });
    token.SKF_DisConnectDev.run([&](auto) { return token.SKF_DisConnectDev.usual(real); });
    find();
    EXPECT_EQ(count(), 1);
    EXPECT_THAT(trace().failures(), IsEmpty());
    EXPECT_EQ(callsSinceMark().back(), "SKF_UnlockDev");
    release();
}

TEST_F(Discovery, ReadersLeaveOutWhatTheyCannotRead) {
    using Fault = std::function<void()>;
    const auto keyFails = [](int nth) -> Fault {
        return [nth] { script().SKF_ExportPublicKey.answerAt(nth, SAR_FAIL); };
    };
    const auto bits = [](ULONG number) -> Fault {
        return [number] {
            script().SKF_ExportPublicKey.run([number](auto container, auto sign, BYTE *blob,
                                                      ULONG *size) {
                const auto result = script().SKF_ExportPublicKey.usual(container, sign, blob, size);
                std::memcpy(blob + 4, &number, sizeof number); // RSAPUBLICKEYBLOB::BitLen
                return result;
            });
        };
    };
    const auto certificate = [](ULONG first, ULONG second) -> Fault {
        return [first, second] {
            script().SKF_ExportCertificate.run([first, second](auto, auto, BYTE *out, ULONG *size) {
                *size = out == nullptr ? first : second;
                return SAR_OK;
            });
        };
    };
    const ContainerModel rsaPair = rsa("c", 1024, true, false), eccPair = ecc("c", true, false);
    const struct {
        const char *what;
        ContainerModel container;
        Fault fault;
        int pairs, certificates; // of the first pair
    } cases[] = {
        {"RSA signature key", rsa("c", 1024, true, true), keyFails(1), 1, 1},
        {"ECC encryption key", ecc("c", true, true), keyFails(2), 1, 1},
        {"RSA key", rsaPair, [] { script().OrvelPKICryptoEncodeRSAPubKey.answer(-3); }, 0, 0},
        {"ECC key", eccPair, [] { script().OrvelPKICryptoEncodeECCPubKey.answer(0); }, 0, 0},
        {"modulus of 257 bytes", rsaPair, bits(2056), 0, 0},
        {"modulus beyond all bounds", rsaPair, bits(0xFFFFFFFF), 0, 0},
        {"lost certificate", eccPair, [] { script().SKF_ExportCertificate.answerAt(2, SAR_FAIL); },
         1, 0},
        {"certificate that grows", eccPair, certificate(3, 4), 1, 0},
        {"certificate that shrinks", eccPair, certificate(4, 3), 1, 1},
        {"certificate beyond int", eccPair, certificate(0x80000000, 0x80000000), 1, 0},
    };
    for (const auto &at : cases) {
        SCOPED_TRACE(at.what);
        resetDevices();
        restoreFunctions();
        ContainerModel &container = addToken({at.container}).containers.front();
        container.signCertificate = {1, 2, 3};
        container.encryptCertificate = {4, 5};
        at.fault();
        discover();
        EXPECT_EQ(DeviceGetKeypairCount(m_device), at.pairs);
        if (at.pairs > 0) {
            SPI_KEYPAIR_HANDLE pair = DeviceGetKeypair(m_device, 0);
            EXPECT_EQ(DeviceGetCertificateCount(pair), at.certificates);
            DeviceFreeKeypair(pair);
        }
        release();
        EXPECT_EQ(script().memory.open(), 0);
        EXPECT_EQ(script().host.blocks.size(), 0u);
    }
}

TEST_F(Discovery, RsaBitsComeFromTheSignatureKeyElseTheEncryptionKey) {
    insert({rsa("both", 2048, true, true), rsa("encryption", 1024, false, true)});
    EXPECT_EQ(DeviceGetKeypairBits(pair("both", 2)), 2048);
    EXPECT_EQ(DeviceGetKeypairBits(pair("both", 1)), 2048);
    EXPECT_EQ(DeviceGetKeypairBits(pair("encryption", 1)), 1024);
}

TEST_F(Discovery, StopsAtThirtyTwoContainers) {
    ApplicationModel &application = addToken({});
    for (int i = 0; i < 40; ++i)
        application.containers.push_back(ecc("c" + std::to_string(i), true, true));
    discover();
    EXPECT_EQ(script().SKF_OpenContainer.calls(), 32);
    EXPECT_EQ(DeviceGetKeypairCount(m_device), 64);
}

TEST_F(Discovery, StopsAtSixteenDevices) {
    const struct {
        int tokens, applications, connected;
        bool isCut;
    } cases[] = {{1, 16, 1, false}, {1, 20, 1, true},   {16, 1, 16, false},
                 {18, 1, 16, true}, {16, 0, 16, false}, {18, 0, 16, true}};
    for (const auto &at : cases) {
        resetDevices();
        for (int i = 0; i < at.tokens; ++i) {
            DeviceModel &model = script().memory.addDevice("key" + std::to_string(i));
            for (int j = 0; j < at.applications; ++j)
                model.applications.emplace_back().name = "app" + std::to_string(j);
        }
        find();
        EXPECT_EQ(count(), std::min(16, at.tokens * std::max(at.applications, 1)));
        Lines failures = trace().failures();
        std::erase(failures, error("addDevice", "appNameLen == 0 || appNameList[0] == 0"));
        const Lines line = {warning("addDevice", "hSet->m_count >= hSet->m_allocCount")};
        EXPECT_EQ(failures, at.isCut ? line : Lines()) << at.tokens << ", " << at.applications;
        EXPECT_EQ(std::ranges::count(callsSinceMark(), "SKF_ConnectDev"), at.connected);
        EXPECT_EQ(std::ranges::count(callsSinceMark(), "SKF_OpenApplication"),
                  at.applications == 0 ? 0 : 16);
        release();
        EXPECT_EQ(script().memory.open(), 0);
    }
}

TEST_F(Discovery, ListsAreReadWithinTheirBuffer) {
    addToken({ecc("sm2", true, false)});
    std::vector<std::string> asked;
    script().SKF_ConnectDev.run([&asked](LPSTR name, DEVHANDLE *) {
        asked.push_back(name);
        return SAR_FAIL;
    });
    const struct {
        std::string list;
        ULONG size;
        std::vector<std::string> names;
    } cases[] = {
        {"one", 3, {"one"}},
        {std::string("one\0two", 7), 7, {"one", "two"}},
        {std::string("one\0two\0\0six\0", 13), 13, {"one", "two"}},
        {std::string("one\0two\0", 8), 4, {"one"}},
        {std::string(1024, 'A'), 1024, {std::string(1024, 'A')}},
        {std::string(1024, 'A'), 5000, {std::string(1024, 'A')}},
        {std::string("one\0", 4) + std::string(1020, 'B'),
         0xFFFFFFFF,
         {"one", std::string(1020, 'B')}},
    };
    for (const auto &at : cases) {
        asked.clear();
        script().SKF_EnumDev.run(names(at.list, at.size));
        find();
        EXPECT_EQ(asked, at.names);
        release();
    }
    script().SKF_EnumDev.restore();
    script().SKF_ConnectDev.restore();

    script().SKF_OpenApplication.run([](DEVHANDLE token, LPSTR name, HAPPLICATION *application) {
        EXPECT_EQ(name, std::string(1024, 'D'));
        char real[] = "app";
        return script().SKF_OpenApplication.usual(token, real, application);
    });
    script().SKF_EnumApplication.run(names(std::string(1024, 'D'), 0x80000000));
    find();
    EXPECT_EQ(count(), 1) << "a long application name is cut, not refused";
}

TEST_F(Discovery, FullTextsOfTheTokenNeedNoNul) {
    addToken({});
    DEVINFO &info = script().memory.devices.front().info;
    std::memset(info.Issuer, 'I', sizeof info.Issuer);
    std::memset(info.Label, 'L', sizeof info.Label);
    std::memset(info.SerialNumber, 'S', sizeof info.SerialNumber);
    std::memset(&info.HWVersion, 'x', sizeof info.HWVersion);
    trace().setLevel("4");
    find();
    EXPECT_TRUE(
        trace().contains(debug("addDevice", "device info issuer : " + std::string(64, 'I'))));
    m_device = DeviceGetDevice(m_set, 0);
    char text[33];
    EXPECT_EQ(DeviceGetLabel(m_device, text, sizeof text, nullptr), 1);
    EXPECT_EQ(text, std::string(32, 'L'));
    EXPECT_EQ(DeviceGetSerialNumber(m_device, text, sizeof text, nullptr), 1);
    EXPECT_EQ(text, std::string(32, 'S'));
}

} // namespace
} // namespace tembra::test
