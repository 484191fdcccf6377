#include "provider_run.h"

#include "../../tests/support/provider_allocator.h"
#include "provider/settings.h"

#include <cstdio>
#include <cstdlib>

namespace tembra::fuzz {
namespace {

using test::ProviderAllocator;
using test::script;

char traceLevel[] = "TEMBRA_KEY_PROV_LOG_LEVEL=0";
char tracePath[] = "TEMBRA_KEY_PROV_LOG_PATH=/dev/null";
char registry[] = "TEMBRA_KEY_PROV_REGISTRY=/dev/null";

void startOnce() {
    static const bool started = [] {
        putenv(traceLevel);
        putenv(tracePath);
        putenv(registry);
        return DeviceInit() == 1;
    }();
    require(started, "DeviceInit fails");
}

} // namespace

void report(const char *what) {
    std::fprintf(stderr, "FINDING: %s\n", what);
    std::abort();
}

ProviderRun::ProviderRun(Input &input) {
    test::resetScript();
    startOnce();
    ProviderAllocator::refuseAbove(std::size_t{1}
                                   << 24); // a token may report a length of gigabytes
    // Mostly without trace, which would halve the speed.
    traceLevel[sizeof traceLevel - 2] = input.once(4) ? '5' : '0';
    g_supportGDKMSM2Import = input.byte() & 1u;
    g_hasSM3 = g_hasSM4 = input.byte() & 1u;
    g_maxOperationLen = 16 * input.byte();
}

ProviderRun::~ProviderRun() {
    ProviderAllocator::failAt(0);
    require(ProviderAllocator::live() == 0, "the provider leaked memory");
    require(script().host.foreignFrees == 0, "memory freed that is not the host library's");
    require(script().host.blocks.empty() || m_allowsHostLeaks, "memory of the host library leaked");
    require(script().memory.containersClosedTwice == 0, "a container closed twice");
    require(script().memory.open() == 0 || m_allowsOpenHandles, "a token handle left open");
}

test::ApplicationModel &insertToken(std::initializer_list<test::ContainerModel> containers) {
    test::ApplicationModel &application =
        script().memory.addDevice("key").applications.emplace_back();
    application.name = "app";
    application.containers = containers;
    return application;
}

void insertTokenForImports(Input &input) {
    const test::ContainerModel containers[] = {test::ecc("c", true, false),
                                               test::rsa("c", 1024, true, false),
                                               test::rsa("c", 2048, true, true)};
    insertToken({input.pick(containers)});
}

OneDevice::OneDevice() : m_set(DeviceGetAllDevices()), m_device(DeviceGetDevice(m_set, 0)) {
    require(m_device != nullptr, "the token is not found");
}

OneDevice::~OneDevice() {
    DeviceFreeDevice(m_device);
    DeviceFreeDevices(m_set);
}

} // namespace tembra::fuzz
