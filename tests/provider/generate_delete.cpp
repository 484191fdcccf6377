// Generation and deletion of key pairs: which container is taken, what is left after a failure.
#include "scripted_test.h"

#include "provider/records.h"

#include <chrono>
#include <future>

namespace tembra::test {
namespace {

constexpr TembraEccParam SM2 = {ORVEL_PKI_ECC_CURVE_SM2, 0};

class Generation : public ScriptedTest {
protected:
    int generate(const char *label, int algo = ORVEL_PKI_ALGORITHM_ECC, int bits = 256,
                 const void *param = &SM2, int type = 2) {
        m_handle = nullptr;
        mark();
        return DeviceGenerateKeypair(m_device, algo, bits, param, type, label, &m_handle);
    }
    int generated(const char *label) {
        const int result = generate(label);
        DeviceFreeKeypair(m_handle);
        return result;
    }
    int containers() const { return script().memory.open(HandleKind::container); }

    SPI_KEYPAIR_HANDLE m_handle = nullptr;
};

TEST_F(Generation, MakesSignaturePairs) {
    const struct {
        const char *label;
        int algo, bits;
        const void *param;
        Bytes key;
    } cases[] = {{"sm2", ORVEL_PKI_ALGORITHM_ECC, 256, &SM2, encodedEccKey(true)},
                 {"rsa1", ORVEL_PKI_ALGORITHM_RSA, 1024, nullptr, encodedRsaKey(true, 1024)},
                 {"rsa2", ORVEL_PKI_ALGORITHM_RSA, 2048, nullptr, encodedRsaKey(true, 2048)}};
    insert({});
    int count = 0;
    for (const auto &at : cases) {
        ASSERT_EQ(generate(at.label, at.algo, at.bits, at.param), 1);
        EXPECT_THAT(trace().failures(), IsEmpty());
        EXPECT_EQ(DeviceGetKeypairCount(m_device), ++count);
        EXPECT_EQ(DeviceGetKeypairType(m_handle), 2);
        EXPECT_EQ(DeviceGetKeypairAlgorithm(m_handle), at.algo);
        EXPECT_EQ(DeviceGetKeypairBits(m_handle), at.bits);
        EXPECT_EQ(exportedKey(m_handle), at.key);
        DeviceFreeKeypair(m_handle);
        EXPECT_EQ(pair(at.label, 2), m_handle) << "found by its label";
    }
    EXPECT_EQ(script().SKF_GenECCKeyPair.argument<1>(), SGD_SM2_1);
    EXPECT_EQ(referencesAfterRelease(), 1 + 1 + 3 + 3);
}

TEST_F(Generation, ChecksItsArgumentsInOrder) {
    insert({});
    const TembraEccParam temporary = {7, 1};
    const TembraEccParam otherCurve = {6, 0};
    const struct {
        const char *label;
        int algo, bits;
        const void *param;
        int type, result;
        const char *message;
        bool makesContainer;
    } cases[] = {
        {"", 4, 256, &SM2, 2, -1, nullptr, false},
        {"x", 4, 256, &SM2, 1, -1, "type != ORVEL_PKI_KEYPAIRTYPE_SIGNATURE", false},
        {"x", 4, 0, &SM2, 2, -1, "keybits <= 0", false},
        {"x", 4, -256, &SM2, 2, -1, "keybits <= 0", false},
        {"x", 1, 1024, &SM2, 2, -1, nullptr, true},
        {"x", 1, 1536, nullptr, 2, -1, "keybits != 1024 && keybits != 2048", false},
        {"x", 4, 256, nullptr, 2, -1, "eccParam == 0", false},
        {"x", 4, 256, &temporary, 2, -1, "eccParam->m_temp", false},
        {"x", 4, 256, &otherCurve, 2, -1, "eccParam->m_curve != ORVEL_PKI_ECC_CURVE_SM2", false},
        {"x", 4, 192, &SM2, 2, -1, "keybits != 256", false},
        {"x", 2, 256, nullptr, 2, 1, nullptr, false}, // generates nothing and says yes
    };
    for (const auto &at : cases) {
        const int before = containers();
        EXPECT_EQ(generate(at.label, at.algo, at.bits, at.param, at.type), at.result);
        EXPECT_EQ(m_handle, nullptr);
        EXPECT_EQ(trace().failures(), errors("DeviceGenerateKeypair", at.message));
        EXPECT_EQ(containers() - before, at.makesContainer)
            << "made before the checks, then reused";
    }
    EXPECT_EQ(DeviceGetKeypairCount(m_device), 0);
    EXPECT_EQ(generated("x"), 1) << "a second try reuses the container";
    EXPECT_EQ(script().SKF_CreateContainer.calls(), 1);
}

TEST_F(Generation, ReusesTheFirstKeylessContainer) {
    insert({ecc("one", true, false), {"blank"}, ecc("later", true, false)});
    EXPECT_EQ(generate("one"), -6);
    EXPECT_THAT(trace().failures(), IsEmpty());
    EXPECT_EQ(generated("later"), 1) << "the walk ends at the keyless container";
    EXPECT_EQ(script().SKF_CreateContainer.calls(), 0);
    EXPECT_EQ(script().memory.devices.front().applications.front().containers.size(), 3u);
    EXPECT_EQ(generate("later"), -6);
    EXPECT_EQ(generated("new"), 1);
    EXPECT_EQ(script().SKF_CreateContainer.calls(), 1);
}

TEST_F(Generation, CanBeRepeatedAfterARefusal) {
    insert({});
    script().SKF_GenECCKeyPair.answer(SAR_USER_NOT_LOGGED_IN);
    EXPECT_EQ(generated("new"), -8);
    script().SKF_GenECCKeyPair.restore();
    EXPECT_EQ(generated("new"), 1);
    EXPECT_EQ(containers(), 1) << "the container of the first attempt";
}

TEST_F(Generation, OddModulusOfTheTokenIsAFailure) {
    insert({});
    script().SKF_GenRSAKeyPair.run([](HCONTAINER, ULONG, RSAPUBLICKEYBLOB *blob) {
        blob->BitLen = 4096;
        return SAR_OK;
    });
    EXPECT_EQ(generate("x", ORVEL_PKI_ALGORITHM_RSA, 2048, nullptr), 0);
    EXPECT_EQ(script().OrvelPKICryptoEncodeRSAPubKey.calls(), 0);
}

TEST_F(Generation, FullTablesAreRefused) {
    ApplicationModel &application = addToken({});
    for (int i = 0; i < 32; ++i)
        application.containers.push_back(ecc("c" + std::to_string(i), i > 0, false));
    discover(); // the first container is typed but has no pair: 31 pairs in 32 containers
    EXPECT_EQ(generate("x"), 0);
    EXPECT_EQ(trace().failures(), errors("getEmptyContainerIndex", "pos >= CONTAINER_COUNT_MAX"));
    EXPECT_EQ(script().SKF_CreateContainer.calls(), 0);
}

TEST_F(Generation, SixtyFourPairsAreCountedOnceTheContainerIsChosen) {
    ApplicationModel &application = addToken({});
    for (int i = 0; i < 32; ++i)
        application.containers.push_back(ecc("c" + std::to_string(i), true, true));
    discover();
    const Lines tooMany =
        errors("DeviceGenerateKeypair", "hDevice->m_keypairCount >= KEYPAIR_COUNT_MAX");
    TembraContainer *last = m_device->m_containers[31];
    enum class Slot { taken, free, keyless };
    const struct {
        Slot slot; // the last one
        const char *label;
        int algo, result;
        Lines lines;
    } cases[] = {
        {Slot::taken, "c0", 4, -6, {}},
        {Slot::taken, "x", 4, 0, errors("getEmptyContainerIndex", "pos >= CONTAINER_COUNT_MAX")},
        {Slot::free, "c0", 4, -6, {}},
        {Slot::free, "x", 4, 0, tooMany},
        {Slot::free, "x", 2, 0, tooMany},
        {Slot::keyless, "x", 4, 0, tooMany},
        {Slot::keyless, "x", 2, 0, tooMany},
    };
    for (const auto &row : cases) {
        m_device->m_containers[31] = row.slot == Slot::free ? nullptr : last;
        last->m_type = row.slot == Slot::keyless ? CONTAINER_TYPE_EMPTY : CONTAINER_TYPE_ECC;
        EXPECT_EQ(generate(row.label, row.algo), row.result);
        EXPECT_EQ(trace().failures(), row.lines);
        EXPECT_THAT(callsSinceMark(), IsEmpty());
    }
    m_device->m_containers[31] = last;
}

TEST_F(Generation, NeedsAnApplication) {
    script().memory.addDevice("blank");
    discover();
    EXPECT_EQ(generate("x"), 0);
    EXPECT_EQ(trace().failures(), errors("DeviceGenerateKeypair", "hDevice->m_isformat == 0"));
}

class Deletion : public Generation {};

TEST_F(Deletion, DropsBothPairsOfTheContainer) {
    const KeptByContract kept;
    ApplicationModel &application =
        insert({ecc("one", true, true), ecc("two", true, true), rsa("three", 1024, true, false)});
    SPI_KEYPAIR_HANDLE two = DeviceGetKeypair(m_device, 3); // the encryption pair
    mark();
    EXPECT_EQ(DeviceDeleteKeypair(two), 1);
    EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_CloseContainer", "SKF_DeleteContainer"));
    EXPECT_STREQ(script().SKF_DeleteContainer.argument<1>(), "two");
    EXPECT_THAT(trace().texts(),
                ElementsAre(info("DeviceDeleteKeypair", "SPI_KEYPAIR_HANDLE hKeypair = %p")));
    EXPECT_EQ(application.containers.size(), 2u);
    EXPECT_EQ(DeviceGetKeypairCount(m_device), 3);
    EXPECT_EQ(m_device->m_keypairs[3], nullptr) << "for a caller that has read the old count";
    EXPECT_EQ(DeviceFreeKeypair(two), 1);
    EXPECT_EQ(DeviceFindKeypair(m_device, 2, "two", &two), 0);
    const int expectedTypes[] = {2, 1, 2};
    for (int i = 0; i < 3; ++i) {
        SPI_KEYPAIR_HANDLE left = DeviceGetKeypair(m_device, i);
        EXPECT_EQ(DeviceGetKeypairType(left), expectedTypes[i]);
        DeviceFreeKeypair(left);
    }
    // 1 set, 1 device handle, 5 pairs, 1 handle to the deleted pair: none of it is taken back
    EXPECT_EQ(referencesAfterRelease(), 8);
    EXPECT_EQ(generated("two"), 1) << "its slot is free again";
    keepsHandlesOpen();
}

TEST_F(Deletion, OnlyARefusalForLackOfLoginKeepsThePairs) {
    const struct {
        ULONG answer;
        int result, pairsLeft;
    } cases[] = {{SAR_USER_NOT_LOGGED_IN, -8, 2}, {SAR_FAIL, 1, 0}};
    const KeptByContract kept;
    for (const auto &at : cases) {
        resetDevices();
        insert({ecc("sm2", true, true)});
        SPI_KEYPAIR_HANDLE deleted = DeviceGetKeypair(m_device, 0);
        script().SKF_DeleteContainer.answerAt(1, at.answer);
        EXPECT_EQ(DeviceDeleteKeypair(deleted), at.result);
        EXPECT_EQ(DeviceGetKeypairCount(m_device), at.pairsLeft);
        // Refused for lack of login: the container was closed, and is not closed a second time.
        EXPECT_EQ(DeviceDeleteKeypair(deleted), at.pairsLeft > 0 ? 1 : -2);
        EXPECT_EQ(DeviceFreeKeypair(deleted), 1);
    }
    keepsHandlesOpen();
}

// A slow token on another thread does not hold up the refusal.
TEST_F(Deletion, DeletedPairsAreRefusedWithoutTheLock) {
    const KeptByContract kept;
    insert({ecc("sm2", true, false)});
    SPI_KEYPAIR_HANDLE deleted = DeviceGetKeypair(m_device, 0);
    ASSERT_EQ(DeviceDeleteKeypair(deleted), 1);
    std::future<int> result;
    script().SKF_EnumDev.run([&](auto, auto, auto) { // called under the provider's lock
        result = std::async(std::launch::async, DeviceDeleteKeypair, deleted);
        EXPECT_EQ(result.wait_for(std::chrono::seconds(5)), std::future_status::ready);
        return SAR_FAIL;
    });
    DeviceFreeDevices(DeviceGetAllDevices());
    EXPECT_EQ(result.get(), -2);
    EXPECT_TRUE(trace().contains(error("DeviceDeleteKeypair", "hKeypair->m_device == NULL")));
    DeviceFreeKeypair(deleted);
    keepsHandlesOpen();
}

TEST_F(Deletion, ClosesAContainerWhoseHandleIsZero) {
    const KeptByContract kept;
    insert({ecc("sm2", true, false)});
    HCONTAINER real = std::exchange(m_device->m_containers[0]->m_hContainer, nullptr);
    script().SKF_CloseContainer.run([real](HCONTAINER container) {
        return script().SKF_CloseContainer.usual(container == nullptr ? real : container);
    });
    SPI_KEYPAIR_HANDLE handle = DeviceGetKeypair(m_device, 0);
    mark();
    EXPECT_EQ(DeviceDeleteKeypair(handle), 1);
    EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_CloseContainer", "SKF_DeleteContainer"));
    DeviceFreeKeypair(handle);
    keepsHandlesOpen();
}

TEST_F(Deletion, NamesTheHostsLabelOfAReusedContainer) {
    const KeptByContract kept;
    insert({{"blank"}});
    ASSERT_EQ(generate("mine"), 1);
    EXPECT_EQ(DeviceDeleteKeypair(m_handle), 1) << "the token knows no container of this name";
    EXPECT_STREQ(script().SKF_DeleteContainer.argument<1>(), "mine");
    DeviceFreeKeypair(m_handle);
    keepsHandlesOpen();
}

} // namespace
} // namespace tembra::test
