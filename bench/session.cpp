#include "session.h"

#include "trace_file.h"

#include <cstdio>
#include <cstdlib>

namespace tembra::bench {

Session::Session(int containers) {
    nullToken = {};
    nullToken.containers = containers;
    TraceFiles::instance();
    setenv("TEMBRA_KEY_PROV_REGISTRY", "/dev/null", 1); // the settings' defaults
    setLevel("0");
    DeviceInit();
    set = DeviceGetAllDevices();
    device = DeviceGetDevice(set, 0);
    if (DeviceFindKeypair(device, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, FIRST_LABEL, &signKey) != 1) {
        std::fputs("the provider does not find the null token\n", stderr);
        std::exit(1);
    }
}

Session::~Session() {
    setLevel("0");
    DeviceFreeKeypair(signKey);
    DeviceFreeDevice(device);
    DeviceFreeDevices(set);
    DeviceEnd();
}

} // namespace tembra::bench
