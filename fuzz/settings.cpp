// DeviceInit over a settings file of any bytes.
#include "support/provider_run.h"

#include <cstdio>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

using namespace tembra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input input(data, size);
    ProviderRun run(input);
    static const int file = memfd_create("settings", 0);
    static char variable[64];
    std::snprintf(variable, sizeof variable, "TEMBRA_KEY_PROV_REGISTRY=/proc/self/fd/%d", file);
    putenv(variable);
    const Bytes text = input.rest();
    require(file >= 0 && ftruncate(file, 0) == 0 &&
                pwrite(file, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()),
            "the settings file cannot be written");

    DeviceEnd();
    require(DeviceInit() == 1, "the provider does not start with these settings");
    return 0;
}
