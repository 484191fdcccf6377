// Every scenario with each allocation of the provider, each token call and each call to the host
// library failing in turn: once, and permanently from then on. After each run nothing may have
// leaked, and the scenario must succeed again.
#include "expectations.h"
#include "scenarios.h"
#include "secret_watch.h"

#include "../support/provider_allocator.h"
#include "../support/trace_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <future>
#include <thread>

namespace tembra::test {
namespace {

// A result code of failing calls.
struct Failure {
    std::uint32_t code;
    bool isPermanent = false;
};
// A general failure, not logged in, removed; then all other codes that some call site
// distinguishes.
const std::vector<Failure> TOKEN_FAILURES = {{SAR_FAIL},
                                             {SAR_FAIL, true},
                                             {SAR_USER_NOT_LOGGED_IN},
                                             {SAR_USER_NOT_LOGGED_IN, true},
                                             {SAR_DEVICE_REMOVED},
                                             {SAR_DEVICE_REMOVED, true},
                                             {SAR_OBJERR},
                                             {SAR_DECRYPTPADERR},
                                             {0x0B000033},
                                             {0x000000B3},
                                             {SAR_PIN_INCORRECT},
                                             {SAR_PIN_LOCKED},
                                             {SAR_PIN_LEN_RANGE},
                                             {1},
                                             {3}};
const std::vector<Failure> HOST_FAILURES = {{0}, {0, true}, {0xFFFFFFFD}, {0xFFFFFFFD, true}};

struct Figures {
    unsigned scenarios = 0, faults = 0, runs = 0;
};
Figures figures;

bool lockIsFree() {
    script().memory.devices.clear();
    auto done = std::make_shared<std::promise<void>>();
    std::thread([done] {
        DeviceFreeDevices(DeviceGetAllDevices());
        done->set_value();
    }).detach();
    return done->get_future().wait_for(std::chrono::seconds(2)) == std::future_status::ready;
}

// What is known after a run.
struct Outcome {
    std::vector<Step> steps;
    const Step *failed = nullptr;
    std::size_t devices = 0; // device records that discovery made
    std::vector<std::size_t> hits;
    unsigned refused = 0;
    bool isLogged = false;  // some failure is in the trace
    bool holdsLock = false; // by contract
};

// Handles that stay open by contract: of tokens and applications for which no record could be made,
// and the key of a device authentication whose cipher could not be started.
int openByContract(const Outcome &outcome, std::size_t devices) {
    int open = 2 * static_cast<int>(devices - std::min(devices, outcome.devices));
    if (outcome.failed != nullptr && outcome.failed->entry == "DeviceVerifyPwd" &&
        !outcome.hits.empty() && script().journal[outcome.hits[0]] == "SKF_EncryptInit")
        ++open;
    return open;
}

// Failed generations are debug lines, and a lost copy of an encryption certificate is information.
Lines failureLines() {
    Lines texts;
    for (const TraceLine &line : trace().lines())
        if (line.level == "ERROR" || line.level == "WARN" ||
            line.message.find("KeyPair fail") != line.message.npos ||
            line.message.ends_with("->m_encCert == 0"))
            texts.push_back(line.text());
    return texts;
}

class FaultLoops : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_THAT(m_watch.findings(), ::testing::IsEmpty()); }

    // Plays the scenario up to the first failing step and checks that nothing has leaked.
    const Outcome &run(const Scenario &scenario, const CallFault &call, unsigned allocation,
                       bool isPermanent) {
        ++figures.runs;
        m_outcome = {};
        resetScript();
        Session::kept() = {};
        trace().setLevel(scenario.traceLevel == nullptr
                             ? std::nullopt
                             : std::optional<std::string>(scenario.traceLevel));
        scenario.insert();
        watchHostLibrary();
        EXPECT_EQ(DeviceInit(), 1);
        trace().mark();
        callFault() = call;
        ProviderAllocator::failAt(allocation, isPermanent);
        play(scenario);
        m_outcome.refused = ProviderAllocator::refused();
        m_outcome.hits = callFault().hits;
        callFault() = {};
        ProviderAllocator::failAt(0);
        m_outcome.isLogged = !trace().failures().empty();
        expectNoLeaks();
        return m_outcome;
    }

    void watchHostLibrary() {
        script().OrvelPKICryptoFreeMemory.run([this](void *block) {
            const auto &blocks = script().host.blocks;
            if (const auto found = blocks.find(block); found != blocks.end())
                m_watch.freed(block, found->second);
            return script().OrvelPKICryptoFreeMemory.usual(block);
        });
    }

    const Outcome &runClean(const Scenario &scenario) {
        run(scenario, {}, 0, false);
        EXPECT_EQ(m_outcome.failed, nullptr)
            << m_outcome.failed->entry << " failed without a fault";
        m_devices = m_outcome.devices;
        return m_outcome;
    }

    // The step that made the call with this index in the journal; null for calls that only release
    // handles.
    const Step *stepOf(std::size_t call) const {
        for (const Step &step : m_outcome.steps)
            if (call >= step.callsBegin && call < step.callsEnd)
                return &step;
        return nullptr;
    }

    void expectResult(std::uint32_t code) const;
    void expectMemoryFailure(bool once) const;
    void loopOverCalls(char library, const std::vector<Failure> &codes);

    std::set<std::string> m_entries;
    Outcome m_outcome;
    bool m_testsHeldLock = false; // the testing thread then waits until the process ends

private:
    void play(const Scenario &scenario) {
        m_watch.begin(__builtin_frame_address(0));
        Session session(&m_watch);
        try {
            scenario.run(session);
        } catch (const Session::Ended &) {
        }
        m_watch.begin(nullptr);
        m_entries.insert(session.entries.begin(), session.entries.end());
        m_outcome.steps = session.steps();
        m_outcome.devices =
            session.set == nullptr ? 0 : static_cast<std::size_t>(session.set->m_count);
        if (m_outcome.steps.back().result != 1)
            m_outcome.failed = &m_outcome.steps.back();
        // Memory ran out for the copy of a certificate that the token has stored.
        m_outcome.holdsLock = m_outcome.failed != nullptr && ProviderAllocator::refused() > 0 &&
                              m_outcome.failed->entry == "DeviceUpdateCertificate" &&
                              script().journal.back() == "SKF_ImportCertificate";
    }

    void expectNoLeaks() {
        Session::freeKept();
        EXPECT_EQ(ProviderAllocator::live(), 0u) << "blocks of the provider leaked";
        EXPECT_LE(script().memory.open(), openByContract(m_outcome, m_devices)) << "handles leaked";
        EXPECT_EQ(script().host.blocks.size(), 0u) << "memory of the host library leaked";
        EXPECT_EQ(script().host.foreignFrees, 0);
        EXPECT_EQ(script().memory.containersClosedTwice, 0);
        if (!m_outcome.holdsLock || m_testsHeldLock) {
            ASSERT_EQ(lockIsFree(), !m_outcome.holdsLock);
        }
        EXPECT_EQ(DeviceEnd(), 1);
        EXPECT_LE(script().host.pseudoDevices, 0);
    }

    std::size_t m_devices = 99; // that a clean run finds
    SecretWatch m_watch{secrets()};
};

void FaultLoops::expectResult(std::uint32_t code) const {
    const Step *step = stepOf(m_outcome.hits.front());
    std::string call = script().journal[m_outcome.hits.front()];
    if (step == nullptr) {
        EXPECT_TRUE(givesBack(call)) << call;
        return;
    }
    // The first failure that the entry point does not tolerate determines its result.
    int result = 1;
    for (const std::size_t hit : m_outcome.hits) {
        if (result == 1 && stepOf(hit) == step) {
            call = script().journal[hit];
            result = expectedResult(step->entry, call, code);
        }
    }
    EXPECT_EQ(step->result, result) << step->entry << " after " << call;
}

void FaultLoops::expectMemoryFailure(bool once) const {
    if (m_outcome.failed == nullptr)
        return; // only a trace line or a key pair was left out
    EXPECT_EQ(m_outcome.failed->result, 0) << m_outcome.failed->entry;
    // Key pairs for whose record there is no memory are left out without a line.
    const std::set<std::string> silent = {"DeviceNewHash", "DeviceNewCipher",
                                          "DeviceGetKeypairCount"};
    if (once && silent.count(m_outcome.failed->entry) == 0 && !m_outcome.holdsLock) {
        EXPECT_TRUE(m_outcome.isLogged) << m_outcome.failed->entry;
    }
}

void FaultLoops::loopOverCalls(char library, const std::vector<Failure> &codes) {
    for (const Scenario &scenario : scenarios()) {
        runClean(scenario);
        for (const auto &[code, isPermanent] : codes) {
            for (unsigned n = 1; !HasFailure(); ++n) {
                SCOPED_TRACE(std::string(scenario.name) + ", " + library + std::to_string(n) +
                             ", code " + std::to_string(code) +
                             (isPermanent ? ", permanently" : ""));
                if (run(scenario, {library, n, code, isPermanent}, 0, false).hits.empty())
                    break;
                figures.faults += static_cast<unsigned>(m_outcome.hits.size());
                expectResult(code);
                runClean(scenario);
            }
        }
    }
}

TEST_F(FaultLoops, ScenariosPassAllEntryPoints) {
    std::set<std::string> all = {
#define TEMBRA_ENTRY_POINT(result, name, parameters) #name,
#include "tembra_key_prov_entry_points.h"
    };
    for (const Scenario &scenario : scenarios()) {
        runClean(scenario);
        ++figures.scenarios;
    }
    for (const std::string &entry : m_entries)
        all.erase(entry);
    // Every session ends with these.
    EXPECT_THAT(all, ::testing::UnorderedElementsAre("DeviceFreeCipher", "DeviceFreeDevice",
                                                     "DeviceFreeDevices", "DeviceFreeHash",
                                                     "DeviceFreeKeypair"));
}

// The records and copies that can be missing, and the line of each.
const char *const MEMORY_LINES[] = {
    "[ERROR] [DeviceGetAllDevices] alloc memory fail",
    "[ERROR] [createKeyHandle] hDevice alloc memory fail",
    "[ERROR] [createKeyHandle] hDevice->m_serialNumber == 0",
    "[ERROR] [createEmptyKeyHandle] hDevice == 0",
    "[ERROR] [createEmptyKeyHandle] hDevice->m_serialNumber == 0",
    "[ERROR] [getContainer] hContainer == 0",
    "[ERROR] [getContainer] hContainer->m_label == 0",
    "[ERROR] [GetCertificate] *certblob == 0",
    "[ERROR] [DeviceGetPublicKeyFromKeypair] malloc memory fail",
    "[ERROR] [createContainer] hContainer == 0",
    "[ERROR] [createContainer] hContainer->m_label == 0",
    "[ERROR] [DeviceGenerateKeypair] hKeypair == 0",
    "[ERROR] [DeviceGenerateKeypair] hKeypair->m_label == 0",
    "[ERROR] [DeviceUpdateCertificate] "
    "hKeypair->m_device->m_containers[hKeypair->m_index]->m_signCert == 0",
    "[INFO] [DeviceUpdateCertificate] "
    "hKeypair->m_device->m_containers[hKeypair->m_index]->m_encCert == 0",
    "[ERROR] [importSM2KeyPair] sm2Cipher == 0",
    "[ERROR] [DeviceImportKeypair] hEncKeypair == 0",
    "[ERROR] [DeviceImportKeypair] hEncKeypair->m_label == 0",
};

TEST_F(FaultLoops, AllocationsFail) {
    std::set<std::string> lines;
    for (const Scenario &scenario : scenarios()) {
        runClean(scenario);
        for (const bool isPermanent : {false, true}) {
            for (unsigned n = 1; !HasFailure(); ++n) {
                SCOPED_TRACE(std::string(scenario.name) + ", allocation " + std::to_string(n) +
                             (isPermanent ? ", permanently" : ""));
                if (run(scenario, {}, n, isPermanent).refused == 0)
                    break;
                figures.faults += m_outcome.refused;
                expectMemoryFailure(!isPermanent);
                const Lines failures = failureLines();
                lines.insert(failures.begin(), failures.end());
                runClean(scenario);
            }
        }
    }
    EXPECT_THAT(lines, ::testing::IsSupersetOf(MEMORY_LINES));
}

TEST_F(FaultLoops, TokenCallsFail) {
    loopOverCalls('S', TOKEN_FAILURES);
}

TEST_F(FaultLoops, HostCallsFail) {
    loopOverCalls('O', HOST_FAILURES);
}

TEST_F(FaultLoops, FailedEncryptionsLeaveNoKeys) {
    run(FAILED_ENCRYPTION, {}, 0, false);
    EXPECT_EQ(m_outcome.failed, nullptr);
}

// The result of the token's call decides, not the value of the handle.
TEST_F(FaultLoops, HandlesOfZeroAreClosedWhenMemoryRunsOut) {
    resetScript();
    trace().setLevel("0");
    scenarios().front().insert();
    ASSERT_EQ(DeviceInit(), 1);
    SPI_DEVICESET_HANDLE set = DeviceGetAllDevices();
    SPI_DEVICE_HANDLE device = set->m_handles[0];
    const Bytes key(16);
    script().SKF_DigestInit.run([](auto, auto, auto, auto, auto, HANDLE *handle) {
        *handle = nullptr;
        return SAR_OK;
    });
    script().SKF_SetSymmKey.run([](auto, auto, auto, HANDLE *handle) {
        *handle = nullptr;
        return SAR_OK;
    });
    ProviderAllocator::failAt(2); // the list's first slots
    EXPECT_EQ(DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3), nullptr);
    EXPECT_EQ(script().SKF_CloseHandle.calls(), 1);
    for (const unsigned n : {1u, 2u}) { // the record, the list's first slots
        ProviderAllocator::failAt(n);
        EXPECT_EQ(DeviceNewCipher(device, 1, ORVEL_PKI_ALGORITHM_SMS4_ECB, key.data(), 16, nullptr),
                  nullptr);
        EXPECT_EQ(script().SKF_CloseHandle.calls(), 1 + static_cast<int>(n));
    }
    ProviderAllocator::failAt(0);
    DeviceFreeDevices(set);
    DeviceEnd();
}

// The last test of the program: the thread that asks for the lock must not get it.
TEST_F(FaultLoops, OnlyALostCopyOfACertificateLeavesTheLockHeld) {
    m_testsHeldLock = true;
    const Scenario &scenario =
        *std::find_if(scenarios().begin(), scenarios().end(), [](const Scenario &at) {
            return at.name == std::string("update certificates");
        });
    for (unsigned n = 1; !m_outcome.holdsLock; ++n)
        ASSERT_NE(run(scenario, {}, n, false).refused, 0u) << "no run left the lock held";
}

class PrintFigures : public ::testing::Environment {
    void TearDown() override {
        std::printf("fault loops: %u scenarios, %u faults injected, %u runs\n", figures.scenarios,
                    figures.faults, figures.runs);
    }
};
const auto *const PRINT_FIGURES [[maybe_unused]] =
    ::testing::AddGlobalTestEnvironment(new PrintFigures);

} // namespace
} // namespace tembra::test
