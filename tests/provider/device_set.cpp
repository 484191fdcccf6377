// The set, its devices, and the reference counts behind them.
#include "scripted_test.h"

namespace tembra::test {
namespace {

class DeviceSets : public ScriptedTest {};

TEST_F(DeviceSets, PickWithinTheirCount) {
    insert({});
    EXPECT_EQ(DeviceGetDeviceCount(m_set), 1);
    EXPECT_EQ(DeviceGetDevice(m_set, 1), nullptr);
    EXPECT_EQ(trace().failures(),
              errors("DeviceGetDevice", "index < 0 || index >= hDeviceSet->m_count"));
}

TEST_F(DeviceSets, FreeingTheSetDestroysItsDevices) {
    insert({ecc("sm2", true, true), rsa("rsa", 1024, true, false)});
    EXPECT_EQ(referencesAfterRelease(), 5) << "the set, the device handle, three pairs";
    mark();
    release();
    EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_CloseContainer", "OrvelPKICryptoFreeMemory",
                                              "OrvelPKICryptoFreeMemory", "SKF_CloseContainer",
                                              "OrvelPKICryptoFreeMemory", "SKF_CloseApplication",
                                              "SKF_DisConnectDev"));
}

TEST_F(DeviceSets, DevicesOutliveTheSetAndKeyPairsKeepThem) {
    insert({ecc("sm2", true, false)});
    SPI_KEYPAIR_HANDLE handle = DeviceGetKeypair(m_device, 0);
    DeviceFreeDevices(m_set);
    m_set = nullptr;
    EXPECT_EQ(DeviceGetKeypairCount(m_device), 1);
    DeviceFreeDevice(m_device);
    m_device = nullptr;
    EXPECT_EQ(DeviceGetKeypairType(handle), 2);
    EXPECT_EQ(script().memory.open(HandleKind::application), 1);
    EXPECT_EQ(script().memory.open(HandleKind::container), 1);
    DeviceFreeKeypair(handle);
    EXPECT_EQ(script().memory.open(), 0);
}

} // namespace
} // namespace tembra::test
