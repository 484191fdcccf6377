#include "scripted_test.h"

#include "process_environment.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <thread>

namespace tembra::test {
namespace {

void printTrace() {
    std::printf("trace since the mark:\n");
    for (const std::string &text : trace().texts())
        std::printf("  %s\n", text.c_str());
}

} // namespace

Lines errors(const std::string &function, const char *message) {
    return message == nullptr ? Lines() : Lines{error(function, message)};
}

std::string withNumber(const char *message, ULONG number) {
    char text[200] = "";
    if (message != nullptr)
        std::snprintf(text, sizeof text, message, number);
    return text;
}

Bytes bytesOf(const std::string &text) {
    return Bytes(text.begin(), text.end());
}

void ScriptedTest::SetUp() {
    resetScript();
    trace().setLevel(std::nullopt);
    setVariable("TEMBRA_KEY_PROV_REGISTRY", (m_directory.path() / "settings.reg").string());
    ASSERT_EQ(DeviceInit(), 1);
    mark();
}

void ScriptedTest::TearDown() {
    if (HasFailure())
        printTrace();
    if (!lockIsFree()) {
        printTrace();
        std::fprintf(stderr, "the provider's lock is still held at the end of the test\n");
        std::abort();
    }
    release();
    EXPECT_EQ(DeviceEnd(), 1);
    const TokenScript &at = script();
    if (m_expectsNoOpenHandles) {
        EXPECT_EQ(at.memory.open(), 0) << "token handles left open";
        EXPECT_EQ(at.host.blocks.size(), 0u) << "memory of the host library not given back";
        EXPECT_EQ(at.host.pseudoDevices, 0);
    }
    EXPECT_EQ(at.memory.containersClosedTwice, 0);
    EXPECT_EQ(at.host.foreignFrees, 0);
    static bool leaked = false; // what is lost once is reported again by every later look
    if (!leaked) {
        leaked = leaksFound();
        EXPECT_FALSE(leaked);
    }
}

// Asked from another thread, since the lock is recursive on Windows and may be here.
bool ScriptedTest::lockIsFree() const {
    if (m_device == nullptr)
        return true;
    auto asked = std::make_shared<std::promise<void>>();
    std::thread([asked, handle = m_device] {
        DeviceFindKeypair(handle, 0, "", nullptr);
        asked->set_value();
    }).detach();
    return asked->get_future().wait_for(std::chrono::seconds(10)) == std::future_status::ready;
}

void ScriptedTest::restart(const std::string &settings) {
    release();
    ASSERT_EQ(DeviceEnd(), 1);
    writeFile(m_directory.path() / "settings.reg",
              "Windows Registry Editor Version 5.00\r\n\r\n"
              "[HKEY_LOCAL_MACHINE\\Software\\ORVEL\\PKI\\Devices\\TembraKey]\r\n" +
                  settings);
    ASSERT_EQ(DeviceInit(), 1);
    mark();
}

ApplicationModel &ScriptedTest::addToken(std::initializer_list<ContainerModel> containers) {
    ApplicationModel &application = script().memory.addDevice("key").applications.emplace_back();
    application.name = "app";
    application.containers = containers;
    return application;
}

void ScriptedTest::discover(int index) {
    release();
    m_set = DeviceGetAllDevices();
    ASSERT_NE(m_set, nullptr);
    m_device = DeviceGetDevice(m_set, index);
    ASSERT_NE(m_device, nullptr);
    mark();
}

ApplicationModel &ScriptedTest::insert(std::initializer_list<ContainerModel> containers) {
    ApplicationModel &application = addToken(containers);
    discover();
    return application;
}

SPI_KEYPAIR_HANDLE ScriptedTest::pair(const char *label, int type) {
    const SPI_KEYPAIR_HANDLE handle = find(label, type);
    mark();
    return handle;
}

void ScriptedTest::resetDevices() {
    release();
    script().memory.devices.clear();
}

void ScriptedTest::restoreFunctions() {
#define TEMBRA_IMPORT(result, name, parameters) script().name.restore();
#include "platform/orvel_crypto_functions.h"
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
}

// A device handle is taken for the purpose, so the count is that without it.
int ScriptedTest::referencesAfterRelease() {
    TraceCapture &capture = trace();
    DeviceFreeDevice(DeviceGetDevice(m_set, 0));
    int references = -1;
    for (const TraceLine &at : capture.lines())
        std::sscanf(at.message.c_str(), "hDevice->m_refCount=%d", &references);
    return references;
}

std::vector<std::string> ScriptedTest::callsSinceMark() const {
    const auto &journal = script().journal;
    return {journal.begin() + static_cast<std::ptrdiff_t>(m_journalMark), journal.end()};
}

void ScriptedTest::mark() {
    trace().mark();
    m_journalMark = script().journal.size();
}

} // namespace tembra::test
