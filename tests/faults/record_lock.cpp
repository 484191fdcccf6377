// The lock inside the records is free whenever the provider allocates, frees or gives memory back
// to the host library: nothing that can block or call out runs under it.
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

// Asks for the lock on a thread of its own, through an entry point that takes no other.
bool isRecordLockFree(SPI_KEYPAIR_HANDLE pair) {
    auto asked = std::make_shared<std::promise<void>>();
    std::thread([asked, pair] {
        DeviceGetCertificateCount(pair);
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
            if (!isRecordLockFree(pair)) {
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

} // namespace
} // namespace tembra::test
