#include "held_handles.h"

#include <gtest/gtest.h>

namespace tembra::test {

SPI_KEYPAIR_HANDLE HeldHandles::find(const char *label, int type) {
    SPI_KEYPAIR_HANDLE handle = nullptr;
    EXPECT_EQ(DeviceFindKeypair(m_device, type, label, &handle), 1) << label;
    if (handle != nullptr)
        m_pairs.push_back(handle);
    return handle;
}

std::vector<unsigned char> HeldHandles::exportedKey(SPI_KEYPAIR_HANDLE pair) {
    SPI_PUBLICKEY_HANDLE key = DeviceGetPublicKeyFromKeypair(pair);
    std::vector<unsigned char> encoded(1024);
    int length = 0;
    EXPECT_EQ(DeviceExportPublicKey(key, encoded.data(), 1024, &length), 1);
    DeviceFreePublicKey(key);
    encoded.resize(static_cast<std::size_t>(length));
    return encoded;
}

void HeldHandles::release() {
    for (SPI_KEYPAIR_HANDLE handle : m_pairs)
        DeviceFreeKeypair(handle);
    m_pairs.clear();
    DeviceFreeDevice(m_device);
    DeviceFreeDevices(m_set);
    m_device = nullptr;
    m_set = nullptr;
}

} // namespace tembra::test
