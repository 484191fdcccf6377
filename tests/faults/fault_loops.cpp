// Every scenario with every allocation of the provider, every call of the token and every call of
// the host library failing in turn: once, and from then on for good. After each run nothing may be
// lost, and the scenario must go through again.
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

// A code that calls answer, once or from then on for good.
struct Answer {
    std::uint32_t code;
    bool forGood = false;
};
// General failure, not logged in, removed; then every other code that a call site tells apart.
const std::vector<Answer> TOKEN_ANSWERS = {{SAR_FAIL},
                                           {SAR_FAIL, true},
                                           {SAR_USER_NOT_LOGGED_IN},
                                           {SAR_USER_NOT_LOGGED_IN, true},
                                           {SAR_DEVICE_REMOVED},
                                           {SAR_DEVICE_REMOVED, true},
                                           {0x0A00000D},
                                           {0x0A00001E},
                                           {0x0B000033},
                                           {0x000000B3},
                                           {SAR_PIN_INCORRECT},
                                           {SAR_PIN_LOCKED},
                                           {SAR_PIN_LEN_RANGE},
                                           {1},
                                           {3}};
const std::vector<Answer> HOST_ANSWERS = {{0}, {0, true}, {0xFFFFFFFD}, {0xFFFFFFFD, true}};

struct Figures {
    unsigned scenarios = 0, faults = 0, runs = 0;
};
Figures figures;

bool lockIsFree() {
    script().memory.devices.clear();
    auto asked = std::make_shared<std::promise<void>>();
    std::thread([asked] {
        DeviceFreeDevices(DeviceGetAllDevices());
        asked->set_value();
    }).detach();
    return asked->get_future().wait_for(std::chrono::seconds(2)) == std::future_status::ready;
}

// What a run has left to be judged.
struct Outcome {
    std::vector<Step> steps;
    const Step *failed = nullptr;
    std::size_t devices = 0; // records that discovery made
    std::vector<std::size_t> hits;
    unsigned refused = 0;
    Lines failures;
    bool holdsLock = false; // by contract
};

// Of tokens and applications for which no record could be made, and the key of a device
// authentication whose cipher could not be started.
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

    // Runs the scenario as far as it goes under the faults that are planned. Wants nothing lost.
    const Outcome &run(const Scenario &scenario, const CallFault &call, unsigned allocation,
                       bool forGood) {
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
        ProviderAllocator::failAt(allocation, forGood);
        play(scenario);
        m_outcome.refused = ProviderAllocator::refused();
        m_outcome.hits = callFault().hits;
        callFault() = {};
        ProviderAllocator::failAt(0);
        m_outcome.failures = failureLines();
        wantNothingLost();
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
        m_isQuiet = m_outcome.failures.empty();
        return m_outcome;
    }

    // The step in which the call with this place in the journal was made; null for those that give
    // handles back.
    const Step *stepOf(std::size_t call) const {
        for (const Step &step : m_outcome.steps)
            if (call >= step.callsBegin && call < step.callsEnd)
                return &step;
        return nullptr;
    }

    void expectAnswer(std::uint32_t code) const;
    void expectMemoryFailure(bool once) const;
    void loopOverCalls(char library, const std::vector<Answer> &answers);

    std::set<std::string> m_entries;
    Outcome m_outcome;
    bool m_asksForHeldLock = false; // the asking thread then waits to the end of the process

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
        // Memory was short for the copy of a certificate that the token has taken.
        m_outcome.holdsLock = m_outcome.failed != nullptr && ProviderAllocator::refused() > 0 &&
                              m_outcome.failed->entry == "DeviceUpdateCertificate" &&
                              script().journal.back() == "SKF_ImportCertificate";
    }

    void wantNothingLost() {
        Session::freeKept();
        EXPECT_EQ(ProviderAllocator::live(), 0u) << "blocks of the provider lost";
        EXPECT_LE(script().memory.open(), openByContract(m_outcome, m_devices)) << "handles lost";
        EXPECT_EQ(script().host.blocks.size(), 0u) << "memory of the host library lost";
        EXPECT_EQ(script().host.foreignFrees, 0);
        EXPECT_EQ(script().memory.containersClosedTwice, 0);
        if (!m_outcome.holdsLock || m_asksForHeldLock) {
            ASSERT_EQ(lockIsFree(), !m_outcome.holdsLock);
        }
        EXPECT_EQ(DeviceEnd(), 1);
        EXPECT_LE(script().host.pseudoDevices, 0);
    }

    std::size_t m_devices = 99; // that a clean run finds
    bool m_isQuiet = false;     // a clean run writes no failure
    SecretWatch m_watch{secrets()};
};

std::string kindOf(const Step &step, std::size_t call) {
    const std::string name = step.entry.substr(0, step.entry.find(' '));
    if (name == step.entry)
        return name;
    // A plain key pair is enveloped first; the import proper begins with the container's key.
    const auto &journal = script().journal;
    const auto begin = journal.begin() + static_cast<std::ptrdiff_t>(step.callsBegin);
    const auto end = journal.begin() + static_cast<std::ptrdiff_t>(call) + 1;
    return std::any_of(begin, end,
                       [](const std::string &at) {
                           return at == "OrvelPKICryptoDecodeECCPubKey" ||
                                  at == "OrvelPKICryptoDecodeRSAPubKey";
                       })
               ? name
               : "enveloping";
}

void FaultLoops::expectAnswer(std::uint32_t code) const {
    const Step *step = stepOf(m_outcome.hits.front());
    std::string call = script().journal[m_outcome.hits.front()];
    if (step == nullptr) {
        EXPECT_TRUE(givesBack(call)) << call;
        return;
    }
    // The first failure that the entry point does not put up with decides.
    Expectation wanted = {1, ""};
    for (const std::size_t hit : m_outcome.hits) {
        if (wanted.result == 1 && stepOf(hit) == step) {
            call = script().journal[hit];
            wanted = expected(kindOf(*step, hit), call, code);
        }
    }
    EXPECT_EQ(step->result, wanted.result) << step->entry << " after " << call;
    const bool isNamed = std::any_of(
        m_outcome.failures.begin(), m_outcome.failures.end(), [&](const std::string &line) {
            return line.find(wanted.line.empty() ? call + " fail" : wanted.line) != line.npos;
        });
    EXPECT_EQ(isNamed, !wanted.line.empty())
        << step->entry << " after " << call << ": " << wanted.line;
    if (m_isQuiet && wanted.result != 1) { // an import also says what it was reading
        EXPECT_LE(m_outcome.failures.size(), wanted.line.empty() ? 0u : 2u) << call;
    }
}

void FaultLoops::expectMemoryFailure(bool once) const {
    if (m_outcome.failed == nullptr)
        return; // nothing but a line of the trace, or a key pair, was left out
    EXPECT_EQ(m_outcome.failed->result, 0) << m_outcome.failed->entry;
    // Key pairs without memory for their record are left out silently.
    const std::set<std::string> silent = {"DeviceNewHash", "DeviceNewCipher",
                                          "DeviceGetKeypairCount"};
    if (once && silent.count(m_outcome.failed->entry) == 0 && !m_outcome.holdsLock) {
        EXPECT_FALSE(m_outcome.failures.empty()) << m_outcome.failed->entry;
    }
}

void FaultLoops::loopOverCalls(char library, const std::vector<Answer> &answers) {
    for (const Scenario &scenario : scenarios()) {
        runClean(scenario);
        for (const auto &[code, forGood] : answers) {
            for (unsigned n = 1; !HasFailure(); ++n) {
                SCOPED_TRACE(std::string(scenario.name) + ", " + library + std::to_string(n) +
                             ", code " + std::to_string(code) + (forGood ? " for good" : ""));
                if (run(scenario, {library, n, code, forGood}, 0, false).hits.empty())
                    break;
                figures.faults += static_cast<unsigned>(m_outcome.hits.size());
                expectAnswer(code);
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
        all.erase(entry.substr(0, entry.find(' ')));
    // The end of every session.
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
        for (const bool forGood : {false, true}) {
            for (unsigned n = 1; !HasFailure(); ++n) {
                SCOPED_TRACE(std::string(scenario.name) + ", allocation " + std::to_string(n) +
                             (forGood ? " for good" : ""));
                if (run(scenario, {}, n, forGood).refused == 0)
                    break;
                figures.faults += m_outcome.refused;
                expectMemoryFailure(!forGood);
                lines.insert(m_outcome.failures.begin(), m_outcome.failures.end());
                runClean(scenario);
            }
        }
    }
    EXPECT_THAT(lines, ::testing::IsSupersetOf(MEMORY_LINES));
}

TEST_F(FaultLoops, TokenCallsFail) {
    loopOverCalls('S', TOKEN_ANSWERS);
}

TEST_F(FaultLoops, HostCallsFail) {
    loopOverCalls('O', HOST_ANSWERS);
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
    m_asksForHeldLock = true;
    const Scenario &scenario =
        *std::find_if(scenarios().begin(), scenarios().end(), [](const Scenario &at) {
            return at.name == std::string("update certificates");
        });
    for (unsigned n = 1; !m_outcome.holdsLock; ++n)
        ASSERT_NE(run(scenario, {}, n, false).refused, 0u) << "the path was not met";
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
