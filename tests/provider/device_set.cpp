// The set, its devices, and the reference counts behind them.
#include "scripted_test.h"

namespace tembra::test {
namespace {

class DeviceSets : public ScriptedTest {};

TEST_F(DeviceSets, CountAndPick) {
    insert({});
    EXPECT_EQ(DeviceGetDeviceCount(set), 1);
    EXPECT_EQ(DeviceGetDeviceCount(nullptr), -1);
    EXPECT_THAT(trace().texts(), ElementsAre(info("DeviceGetDeviceCount", "hDeviceSet = %p"),
                                             info("DeviceGetDeviceCount", "hDeviceSet = (nil)")));
    const struct {
        SPI_DEVICESET_HANDLE set;
        int index;
        std::string arguments;
    } refused[] = {
        {set, 1, "%p, index = 1"}, {set, -1, "%p, index = -1"}, {nullptr, 0, "(nil), index = 0"}};
    for (const auto &at : refused) {
        mark();
        EXPECT_EQ(DeviceGetDevice(at.set, at.index), nullptr);
        EXPECT_THAT(
            trace().texts(),
            ElementsAre(info("DeviceGetDevice", "hDeviceSet = " + at.arguments),
                        error("DeviceGetDevice", "index < 0 || index >= hDeviceSet->m_count")));
    }
}

TEST_F(DeviceSets, SerialNumberAndLabelAreTraced) {
    insert({});
    char text[17];
    int length = 0;
    EXPECT_EQ(DeviceGetSerialNumber(device, text, sizeof text, &length), 1);
    EXPECT_EQ(DeviceGetLabel(device, text, sizeof text, &length), 1);
    EXPECT_THAT(trace().texts(),
                ElementsAre(info("DeviceGetSerialNumber",
                                 "hDevice = %p, sn = TEST-0123456789A, snlen = 17, pretsnlen = 17"),
                            info("DeviceGetLabel", "label : Test Token")));
    mark();
    EXPECT_EQ(DeviceGetSerialNumber(device, text, sizeof text, nullptr), 1);
    EXPECT_EQ(DeviceGetSerialNumber(nullptr, text, sizeof text, &length), 0);
    EXPECT_EQ(DeviceGetLabel(nullptr, text, sizeof text, &length), 0);
    EXPECT_THAT(trace().texts(),
                ElementsAre(info("DeviceGetSerialNumber",
                                 "hDevice = %p, sn = TEST-0123456789A, snlen = 17, pretsnlen = 0"),
                            error("DeviceGetSerialNumber", "rv = hDevice == 0"),
                            error("DeviceGetLabel", "hDevice == 0")));
}

TEST_F(DeviceSets, LockingIsANoOp) {
    insert({});
    for (SPI_DEVICE_HANDLE handle : {device, SPI_DEVICE_HANDLE{}}) {
        mark();
        EXPECT_EQ(DeviceLockDevice(handle), 1);
        EXPECT_EQ(DeviceUnlockDevice(handle), 1);
        EXPECT_THAT(trace().texts(),
                    ElementsAre(info("DeviceLockDevice", "DeviceLockDevice success"),
                                info("DeviceUnlockDevice", "DeviceUnlockDevice success")));
        EXPECT_THAT(callsSinceMark(), IsEmpty());
    }
}

TEST_F(DeviceSets, FreeingTheSetDestroysItsDevices) {
    insert({ecc("sm2", true, true), rsa("rsa", 1024, true, false)});
    DeviceFreeDevice(device);
    device = nullptr;
    trace().setLevel("4");
    mark();
    EXPECT_EQ(DeviceFreeDevices(set), 1);
    set = nullptr;
    EXPECT_THAT(
        trace().texts(),
        ElementsAre(debug("call_stack_tracer::call_stack_tracer", ">>>>> DeviceFreeDevices"),
                    debug("DeviceFreeDevices",
                          " hDeviceSet = %p, hDeviceSet->m_allocCount=16, "
                          "hDeviceSet->m_count=1, hDeviceSet->m_handles[0]=%p"),
                    info("DeviceFreeDevices", "hDeviceSet->m_handles[0]=%p"),
                    debug("call_stack_tracer::call_stack_tracer", ">>>>> DeviceFreeDevice"),
                    info("DeviceFreeDevice", "hDevice = %p"),
                    info("DeviceFreeDevice", "hDevice->m_refCount=3, hDevice->m_keypairCount=3, "
                                             "hDevice->m_hashCount=0, hDevice->m_cipherCount=0"),
                    debug("call_stack_tracer::~call_stack_tracer", "<<<<< DeviceFreeDevice"),
                    debug("call_stack_tracer::~call_stack_tracer", "<<<<< DeviceFreeDevices")));
    EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_CloseContainer", "OrvelPKICryptoFreeMemory",
                                              "OrvelPKICryptoFreeMemory", "SKF_CloseContainer",
                                              "OrvelPKICryptoFreeMemory", "SKF_CloseApplication",
                                              "SKF_DisConnectDev"));
}

TEST_F(DeviceSets, TakenDevicesOutliveTheSet) {
    insert({ecc("sm2", true, false)});
    DeviceFreeDevices(set);
    set = nullptr;
    EXPECT_EQ(script().memory.open(HandleKind::application), 1);
    EXPECT_EQ(DeviceGetKeypairCount(device), 1);
    DeviceFreeDevice(device);
    device = nullptr;
    EXPECT_EQ(script().memory.open(), 0);
}

TEST_F(DeviceSets, KeyPairsKeepTheirDevice) {
    insert({ecc("sm2", true, false)});
    SPI_KEYPAIR_HANDLE handle = DeviceGetKeypair(device, 0);
    DeviceFreeDevices(set);
    DeviceFreeDevice(device);
    set = nullptr;
    device = nullptr;
    EXPECT_EQ(DeviceGetKeypairType(handle), 2);
    EXPECT_EQ(script().memory.open(HandleKind::container), 1);
    DeviceFreeKeypair(handle);
    EXPECT_EQ(script().memory.open(), 0);
}

TEST_F(DeviceSets, HashesAndCiphersDoNotKeepTheirDevice) {
    insert({});
    ASSERT_NE(DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3), nullptr);
    const unsigned char key[16] = {};
    ASSERT_NE(DeviceNewCipher(device, 1, ORVEL_PKI_ALGORITHM_SMS4_ECB, key, 16, nullptr), nullptr);
    EXPECT_EQ(referencesAfterRelease(), 4);
    mark();
    release();
    EXPECT_THAT(callsSinceMark(), ElementsAre("SKF_CloseHandle", "SKF_CloseHandle",
                                              "SKF_CloseApplication", "SKF_DisConnectDev"));
}

} // namespace
} // namespace tembra::test
