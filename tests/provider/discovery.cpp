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
        set = DeviceGetAllDevices();
        ASSERT_NE(set, nullptr);
    }
    int count() const { return DeviceGetDeviceCount(set); }
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

TEST_F(Discovery, ReadsEverythingOnceAndTraces) {
    ApplicationModel &application =
        addToken({ecc("sm2", true, true), rsa("rsa", 2048, true, false), {"empty"}});
    application.containers.front().signCertificate = {1, 2, 3};
    trace().setLevel("4");
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
    const Lines lines = trace().texts();
    const Lines expected = {debug("addDevice", "device info issuer : Test Issuer"),
                            debug("addDevice", "device info label : Test Token"),
                            debug("addDevice", "device info serial number : TEST-0123456789A"),
                            debug("addDevice", "device algo sym : 0x00000503"),
                            debug("addDevice", "device algo asym : 0x00030500"),
                            debug("addDevice", "device algo hash : 0x00000001")};
    EXPECT_NE(std::search(lines.begin(), lines.end(), expected.begin(), expected.end()),
              lines.end());
    EXPECT_TRUE(trace().contains(debug("addDevice", "hSet->m_handles[0]=%p")));
    EXPECT_TRUE(trace().contains(debug("GetECCPublicKey", "bitlen = 256, line: 0")));
}

TEST_F(Discovery, TokenWithoutApplicationIsUnformatted) {
    script().memory.addDevice("blank");
    for (const bool enumerationFails : {false, true}) {
        if (enumerationFails) {
            script().SKF_EnumApplication.answer(SAR_FAIL);
        }
        find();
        EXPECT_EQ(count(), 1);
        EXPECT_THAT(trace().failures(),
                    ElementsAre(error("addDevice", "appNameLen == 0 || appNameList[0] == 0")));
        EXPECT_EQ(callsSinceMark().back(), "SKF_UnlockDev");
        device = DeviceGetDevice(set, 0);
        char serial[64];
        EXPECT_EQ(DeviceGetSerialNumber(device, serial, sizeof serial, nullptr), 1);
        EXPECT_STREQ(serial, "TEST-0123456789A");
        EXPECT_EQ(DeviceGetKeypairCount(device), 0);
        mark();
        release();
        EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_CloseApplication", "SKF_DisConnectDev"));
        EXPECT_EQ(script().SKF_CloseApplication.argument<0>(), nullptr);
    }
}

TEST_F(Discovery, ApplicationsThatDoNotOpenAreSkippedInSilence) {
    addToken({});
    script().memory.devices.front().applications.emplace_back().name = "second";
    script().SKF_OpenApplication.answerAt(1, SAR_FAIL);
    find();
    EXPECT_EQ(count(), 1);
    EXPECT_THAT(trace().failures(), IsEmpty());
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
    SPI_DEVICE_HANDLE first = DeviceGetDevice(set, 0);
    device = DeviceGetDevice(set, 1);
    DeviceFreeDevices(set);
    set = nullptr;
    mark();
    EXPECT_EQ(DeviceFreeDevice(first), 1);
    EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_CloseApplication", "SKF_DisConnectDev"));
    unsigned char byte = 0;
    EXPECT_EQ(DeviceGenerateRandom(device, 1, &byte), 0) << "disconnected under the other";
}

TEST_F(Discovery, ReadersLeaveOutWhatTheyCannotRead) {
    const auto oddBits = [](ULONG bits) {
        script().SKF_ExportPublicKey.run([bits](HCONTAINER container, BOOL sign, BYTE *blob,
                                                ULONG *length) {
            const ULONG result = script().SKF_ExportPublicKey.usual(container, sign, blob, length);
            std::memcpy(blob + 4, &bits, sizeof bits); // RSAPUBLICKEYBLOB::BitLen
            return result;
        });
    };
    const auto certificate = [](ULONG first, ULONG second) {
        script().SKF_ExportCertificate.run(
            [first, second](HCONTAINER, BOOL, BYTE *out, ULONG *length) {
                *length = out == nullptr ? first : second;
                return SAR_OK;
            });
    };
    const struct {
        const char *what;
        ContainerModel container;
        std::function<void()> fault;
        int pairs;
        int certificates; // of the first pair
        std::string line;
    } cases[] = {
        {"RSA sign key", rsa("c", 1024, true, true),
         [] { script().SKF_ExportPublicKey.answerAt(1, SAR_FAIL); }, 1, 1,
         error("GetRSAPublicKey", "SKF_ExportPublicKey fail, error = 0x0A000001")},
        {"ECC encryption key", ecc("c", true, true),
         [] { script().SKF_ExportPublicKey.answerAt(2, SAR_FAIL); }, 1, 1,
         error("GetECCPublicKey", "SKF_ExportPublicKey fail, error = 0x0A000001")},
        {"RSA encoding", rsa("c", 1024, true, false),
         [] { script().OrvelPKICryptoEncodeRSAPubKey.answer(-3); }, 0, 0,
         error("GetRSAPublicKey", "OrvelPKICryptoEncodeRSAPubKey fail, error : -3")},
        {"ECC encoding", ecc("c", true, false),
         [] { script().OrvelPKICryptoEncodeECCPubKey.answer(0); }, 0, 0,
         warning("GetECCPublicKey", "OrvelPKICryptoEncodeECCPubKey fail, error = 0")},
        {"modulus of 257 bytes", rsa("c", 1024, true, false), [oddBits] { oddBits(2056); }, 0, 0,
         ""},
        {"modulus beyond all bounds", rsa("c", 1024, true, false),
         [oddBits] { oddBits(0xFFFFFFFF); }, 0, 0, ""},
        {"no certificate", ecc("c", true, false),
         [] { script().SKF_ExportCertificate.answer(SAR_CERTNOTFOUNTERR); }, 1, 0,
         error("GetCertificate", "SKF_ExportCertificate fail, error = 0x0A00001C")},
        {"certificate gone at the second call", ecc("c", true, false),
         [] { script().SKF_ExportCertificate.answerAt(2, SAR_FAIL); }, 1, 0,
         error("GetCertificate", "SKF_ExportCertificate fail, error = 0x0A000001")},
        {"certificate that grows", ecc("c", true, false), [=] { certificate(3, 4); }, 1, 0, ""},
        {"certificate that shrinks", ecc("c", true, false), [=] { certificate(4, 3); }, 1, 1, ""},
        {"certificate beyond int", ecc("c", true, false),
         [=] { certificate(0x80000000, 0x80000000); }, 1, 0, ""},
    };
    for (const auto &at : cases) {
        resetScript();
        script().host.pseudoDevices = 1;
        ApplicationModel &application = addToken({at.container});
        application.containers.front().signCertificate = {1, 2, 3};
        application.containers.front().encryptCertificate = {4, 5};
        at.fault();
        find();
        EXPECT_EQ(count(), 1);
        device = DeviceGetDevice(set, 0);
        EXPECT_EQ(DeviceGetKeypairCount(device), at.pairs) << at.what;
        if (!at.line.empty()) {
            EXPECT_TRUE(trace().contains(at.line)) << at.what;
        }
        if (at.pairs > 0) {
            SPI_KEYPAIR_HANDLE pair = DeviceGetKeypair(device, 0);
            EXPECT_EQ(DeviceGetCertificateCount(pair), at.certificates) << at.what;
            DeviceFreeKeypair(pair);
        }
        release();
        EXPECT_EQ(script().memory.open(), 0) << at.what;
        EXPECT_EQ(script().host.blocks.size(), 0u) << at.what;
    }
}

TEST_F(Discovery, CertificatesAreReadOnlyForReadableKeys) {
    addToken({rsa("rsa", 1024, false, false), ecc("ecc", false, false)});
    find();
    EXPECT_EQ(script().SKF_ExportPublicKey.calls(), 4);
    EXPECT_EQ(script().SKF_ExportCertificate.calls(), 0);
}

TEST_F(Discovery, RsaBitsComeFromTheSignatureKeyElseTheEncryptionKey) {
    insert({rsa("both", 2048, true, true), rsa("encryption", 1024, false, true)});
    EXPECT_EQ(DeviceGetKeypairBits(pair("both", 2)), 2048);
    EXPECT_EQ(DeviceGetKeypairBits(pair("both", 1)), 2048);
    EXPECT_EQ(DeviceGetKeypairBits(pair("encryption", 1)), 1024);
}

TEST_F(Discovery, StopsAtThirtyTwoContainers) {
    ApplicationModel &application = addToken({});
    for (int i = 0; i < 40; ++i) {
        application.containers.push_back(ecc("c" + std::to_string(i), true, true));
    }
    find();
    EXPECT_EQ(script().SKF_OpenContainer.calls(), 32);
    device = DeviceGetDevice(set, 0);
    EXPECT_EQ(DeviceGetKeypairCount(device), 64);
}

TEST_F(Discovery, StopsAtSixteenDevices) {
    const std::string line = warning("addDevice", "hSet->m_count >= hSet->m_allocCount");
    const auto failuresWith = [this](int tokens, int applications) {
        resetScript();
        script().host.pseudoDevices = 1;
        for (int i = 0; i < tokens; ++i) {
            DeviceModel &model = script().memory.addDevice("key" + std::to_string(i));
            for (int j = 0; j < applications; ++j) {
                model.applications.emplace_back().name = "app" + std::to_string(j);
            }
        }
        find();
        EXPECT_EQ(count(), std::min(16, tokens * std::max(applications, 1)));
        Lines failures = trace().failures();
        std::erase(failures, error("addDevice", "appNameLen == 0 || appNameList[0] == 0"));
        release();
        EXPECT_EQ(script().memory.open(), 0);
        return failures;
    };
    EXPECT_THAT(failuresWith(1, 16), IsEmpty());
    EXPECT_THAT(failuresWith(1, 20), ElementsAre(line));
    EXPECT_EQ(script().SKF_OpenApplication.calls(), 16);
    EXPECT_THAT(failuresWith(16, 1), IsEmpty());
    EXPECT_THAT(failuresWith(18, 1), ElementsAre(line));
    EXPECT_EQ(script().SKF_ConnectDev.calls(), 16);
    EXPECT_THAT(failuresWith(18, 0), ElementsAre(line));
    EXPECT_EQ(script().SKF_ConnectDev.calls(), 16);
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

    script().SKF_EnumContainer.run(names(std::string(4096, 'C'), 5000));
    find();
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(script().SKF_OpenContainer.calls(), 1);
    release();
    script().SKF_EnumContainer.restore();

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
    EXPECT_TRUE(
        trace().contains(debug("addDevice", "device info label : " + std::string(32, 'L'))));
    EXPECT_TRUE(trace().contains(
        debug("addDevice", "device info serial number : " + std::string(32, 'S'))));
    device = DeviceGetDevice(set, 0);
    char text[33];
    EXPECT_EQ(DeviceGetLabel(device, text, sizeof text, nullptr), 1);
    EXPECT_EQ(text, std::string(32, 'L'));
    EXPECT_EQ(DeviceGetSerialNumber(device, text, sizeof text, nullptr), 1);
    EXPECT_EQ(text, std::string(32, 'S'));
}

TEST_F(Discovery, EarlierSetsStayValid) {
    insert({ecc("sm2", true, false)});
    SPI_DEVICESET_HANDLE second = DeviceGetAllDevices();
    EXPECT_EQ(script().memory.open(HandleKind::device), 2);
    EXPECT_EQ(DeviceFreeDevices(second), 1);
    EXPECT_EQ(DeviceGetKeypairCount(device), 1);
    unsigned char byte = 0;
    EXPECT_EQ(DeviceGenerateRandom(device, 1, &byte), 1);
}

} // namespace
} // namespace tembra::test
