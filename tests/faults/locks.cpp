// Where the provider's locks are free. Under the lock inside the records nothing runs that can
// block or call out; under the lock of the provider no result is logged, so that a slow disk holds
// up one call only.
#include "scenarios.h"

#include "../support/provider_allocator.h"
#include "../support/trace_capture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <thread>

namespace tembra::test {
namespace {

// Whether another thread gets through a call that takes the lock in question and no other.
template <typename Call>
bool isFree(Call call) {
    auto asked = std::make_shared<std::promise<void>>();
    std::thread([asked, call] {
        call();
        asked->set_value();
    }).detach();
    return asked->get_future().wait_for(std::chrono::seconds(5)) == std::future_status::ready;
}

TEST(RecordLock, IsFreeWhereverMemoryIsAllocatedOrFreed) {
    trace().setLevel("0");
    int asked = 0;
    for (const Scenario &scenario : scenarios()) {
        resetScript();
        Session::kept() = {};
        scenario.insert();
        ASSERT_EQ(DeviceInit(), 1);
        SPI_DEVICESET_HANDLE set = DeviceGetAllDevices();
        SPI_DEVICE_HANDLE device = DeviceGetDevice(set, 0);
        SPI_KEYPAIR_HANDLE pair = DeviceGetKeypair(device, 0);
        ASSERT_NE(pair, nullptr);
        const auto ask = [&] {
            ++asked;
            if (!isFree([pair] { DeviceGetCertificateCount(pair); })) {
                std::fprintf(stderr, "the RecordLock is held in: %s\n", scenario.name);
                std::abort();
            }
        };
        script().OrvelPKICryptoFreeMemory.run([&](void *block) {
            ask();
            return script().OrvelPKICryptoFreeMemory.usual(block);
        });
        ProviderAllocator::observeCalls(ask);
        {
            Session session;
            scenario.run(session);
        }
        ProviderAllocator::observeCalls({});
        script().OrvelPKICryptoFreeMemory.restore();
        DeviceFreeKeypair(pair);
        DeviceFreeDevice(device);
        DeviceFreeDevices(set);
        Session::freeKept();
        DeviceEnd();
    }
    EXPECT_GT(asked, 100);
}

struct Failure {
    const char *what;
    void (*fail)(SPI_DEVICE_HANDLE device, SPI_KEYPAIR_HANDLE pair);
};

unsigned char bytes[8] = {1};
int length = 0;
SPI_KEYPAIR_HANDLE found = nullptr;

// Calls that allocate nothing but their lines.
const Failure FAILURES[] = {
    {"pair by index", [](auto device, auto) { found = DeviceGetKeypair(device, 0); }},
    {"absent pair", [](auto device, auto) { DeviceFindKeypair(device, 2, "absent", &found); }},
    {"generation without application",
     [](auto device, auto) {
         device->m_isformat = 0;
         DeviceGenerateKeypair(device, 1, 1024, nullptr, 2, "new", &found);
         device->m_isformat = 1;
     }},
    {"certificate", [](auto, auto pair) { DeviceUpdateCertificate(pair, bytes, 8); }},
    {"deletion of a pair", [](auto, auto pair) { DeviceDeleteKeypair(pair); }},
    {"random bytes", [](auto device, auto) { DeviceGenerateRandom(device, 8, bytes); }},
    {"PIN", [](auto device, auto) { DeviceVerifyPwd(device, 1, "pin", &length); }},
    {"rights of a new file", [](auto device, auto) { DeviceCreateData(device, 8, "", 8); }},
    {"creation", [](auto device, auto) { DeviceCreateData(device, 8, "\2\3", 8); }},
    {"offset of a read", [](auto d, auto) { DeviceReadDataEx(d, 7, 9, bytes, 1, &length); }},
    {"length of a read", [](auto d, auto) { DeviceReadDataEx(d, 7, 0, bytes, -1, &length); }},
    {"read", [](auto d, auto) { DeviceReadDataEx(d, 7, 0, bytes, 1, &length); }},
    {"offset of a write", [](auto d, auto) { DeviceWriteDataEx(d, 7, 8, bytes, 1); }},
    {"write", [](auto d, auto) { DeviceWriteDataEx(d, 7, 0, bytes, 1); }},
    {"deletion of a file", [](auto d, auto) { DeviceDeleteData(d, 7); }},
    {"file to read",
     [](auto d, auto) {
         script().SKF_GetFileInfo.answer(SAR_FAIL);
         DeviceReadDataEx(d, 7, 0, bytes, 1, &length);
     }},
    {"file to write", [](auto d, auto) { DeviceWriteDataEx(d, 7, 0, bytes, 1); }},
};

TEST(ProviderLock, IsFreeWhereAResultIsLogged) {
    resetScript();
    Session::kept() = {};
    trace().setLevel("4");
    scenarios().front().insert();
    script().memory.devices.front().applications.front().files["7"].content = Bytes(8);
    script().SKF_ImportCertificate.answer(SAR_FAIL);
    script().SKF_DeleteContainer.answer(SAR_USER_NOT_LOGGED_IN);
    script().SKF_GenRandom.answer(SAR_FAIL);
    script().SKF_VerifyPIN.answer(SAR_FAIL);
    script().SKF_CreateFile.answer(SAR_FAIL);
    script().SKF_ReadFile.answer(SAR_FAIL);
    script().SKF_WriteFile.answer(SAR_FAIL);
    script().SKF_DeleteFile.answer(SAR_FAIL);
    ASSERT_EQ(DeviceInit(), 1);
    SPI_DEVICESET_HANDLE set = DeviceGetAllDevices();
    SPI_DEVICE_HANDLE device = DeviceGetDevice(set, 0);
    SPI_KEYPAIR_HANDLE pair = DeviceGetKeypair(device, 0);
    ASSERT_NE(pair, nullptr);
    for (const Failure &failure : FAILURES) {
        int asked = 0;
        found = nullptr;
        ProviderAllocator::observeCalls([&, caller = std::this_thread::get_id()] {
            if (std::this_thread::get_id() != caller)
                return;
            ++asked;
            if (!isFree([device] { DeviceFindKeypair(device, 0, "", nullptr); })) {
                std::fprintf(stderr, "the ProviderLock is held while logging: %s\n", failure.what);
                std::abort();
            }
        });
        failure.fail(device, pair);
        ProviderAllocator::observeCalls({});
        EXPECT_GT(asked, 0) << failure.what;
        DeviceFreeKeypair(found);
    }
    DeviceFreeKeypair(pair);
    DeviceFreeDevice(device);
    DeviceFreeDevices(set);
    DeviceEnd();
}

} // namespace
} // namespace tembra::test
