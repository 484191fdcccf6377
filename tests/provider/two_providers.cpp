// A process may have loaded another library with the provider's names, visible to everything in it.
#include "key_pair_blobs.h"
#include "process_environment.h"
#include "scripted_token.h"
#include "tembra_key_prov.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string>

namespace tembra::test {
namespace {

struct Provider {
    explicit Provider(void *library) {
#define TEMBRA_ENTRY_POINT(result, name, arguments)                                                \
    name = reinterpret_cast<decltype(name)>(dlsym(library, #name));
#include "tembra_key_prov_entry_points.h"
    }
#define TEMBRA_ENTRY_POINT(result, name, arguments) result(*name) arguments;
#include "tembra_key_prov_entry_points.h"
};

// Every entry point that calls another is called.
TEST(TwoProviders, CallsBetweenEntryPointsStayInside) {
    setVariable("TEMBRA_KEY_PROV_LOG_LEVEL", "0");
    void *other = dlopen(TEMBRA_OTHER_PROVIDER, RTLD_NOW | RTLD_GLOBAL);
    ASSERT_NE(other, nullptr) << dlerror();
    void *library = dlopen(TEMBRA_PROVIDER, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const Provider provider(library);

    ApplicationModel &application = script().memory.addDevice("key").applications.emplace_back();
    application.name = "app";
    application.containers = {ecc("c", true, false)};
    ASSERT_EQ(provider.DeviceInit(), 1);
    const SPI_DEVICESET_HANDLE set = provider.DeviceGetAllDevices();
    const SPI_DEVICE_HANDLE device = provider.DeviceGetDevice(set, 0);
    ASSERT_NE(device, nullptr);
    const Bytes blob = plainSm2(Bytes(32, 0xDD));
    SPI_KEYPAIR_HANDLE pair = nullptr;
    EXPECT_EQ(provider.DeviceImportKeypair(device, blob.data(), static_cast<int>(blob.size()),
                                           ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, "c", &pair),
              1);
    provider.DeviceFreeKeypair(pair);
    const Bytes key(16, 1);
    provider.DeviceFreeHash(provider.DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3));
    provider.DeviceFreeCipher(
        provider.DeviceNewCipher(device, 1, ORVEL_PKI_ALGORITHM_SMS4_ECB, key.data(), 16, nullptr));
    provider.DeviceFreeDevice(device);
    provider.DeviceFreeDevices(set);
    EXPECT_EQ(provider.DeviceEnd(), 1);

    EXPECT_EQ(script().memory.open(), 0) << "token handles left open";
    EXPECT_EQ(*static_cast<int *>(dlsym(other, "otherProviderCalls")), 0);
}

} // namespace
} // namespace tembra::test
