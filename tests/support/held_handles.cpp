#include "held_handles.h"

#include <gtest/gtest.h>

namespace tembra::test {

SPI_KEYPAIR_HANDLE HeldHandles::find(const char *label, int type) {
    SPI_KEYPAIR_HANDLE handle = nullptr;
    EXPECT_EQ(DeviceFindKeypair(device, type, label, &handle), 1) << label;
    if (handle != nullptr)
        pairs.push_back(handle);
    return handle;
}

void HeldHandles::release() {
    for (SPI_KEYPAIR_HANDLE handle : pairs)
        DeviceFreeKeypair(handle);
    pairs.clear();
    DeviceFreeDevice(device);
    DeviceFreeDevices(set);
    device = nullptr;
    set = nullptr;
}

} // namespace tembra::test
