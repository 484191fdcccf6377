// A started provider and the handles of one device.
#pragma once

#include "null_token.h"
#include "tembra_key_prov.h"
#include "trace_file.h"

namespace tembra::bench {

struct Session {
    explicit Session(int containers = 1) {
        nullToken = {.containers = containers};
        setenv("TEMBRA_KEY_PROV_REGISTRY", "/dev/null", 1); // the settings' defaults
        TraceFile::instance().begin("0");
        DeviceInit();
        set = DeviceGetAllDevices();
        device = DeviceGetDevice(set, 0);
        DeviceFindKeypair(device, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, "container 00", &signKey);
        if (!signKey) {
            std::fputs("the provider does not find the null token\n", stderr);
            std::exit(1);
        }
    }
    ~Session() {
        TraceFile::setLevel("0");
        DeviceFreeKeypair(signKey);
        DeviceFreeDevice(device);
        DeviceFreeDevices(set);
        DeviceEnd();
    }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    SPI_DEVICESET_HANDLE set = nullptr;
    SPI_DEVICE_HANDLE device = nullptr;
    SPI_KEYPAIR_HANDLE signKey = nullptr;
};

} // namespace tembra::bench
