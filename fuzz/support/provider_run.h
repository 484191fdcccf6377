// One run of a harness: a fresh token, a started provider, and at the end a check for leaks.
#pragma once

#include "input.h"

#include "../../tests/support/scripted_token.h"
#include "tembra_key_prov.h"

namespace tembra::fuzz {

// Reports a finding and ends the process.
[[noreturn]] void report(const char *what);
inline void require(bool holds, const char *what) {
    if (!holds)
        report(what);
}

class ProviderRun {
public:
    // Consumes a byte for the trace level and three for the settings.
    explicit ProviderRun(Input &input);
    // Requires that all memory has been freed and, unless allowed, all token handles closed.
    ~ProviderRun();
    ProviderRun(const ProviderRun &) = delete;
    ProviderRun &operator=(const ProviderRun &) = delete;

    // In some places the provider leaves handles open when the token or an allocation fails.
    void allowOpenHandles() { m_allowsOpenHandles = true; }
    // The host library has been told to refuse to free memory.
    void allowHostLeaks() { m_allowsHostLeaks = true; }

private:
    bool m_allowsOpenHandles = false;
    bool m_allowsHostLeaks = false;
};

// A device with one application, "app", that holds these containers.
test::ApplicationModel &insertToken(std::initializer_list<test::ContainerModel> containers);

// The same with a container "c" that has a signature key of any algorithm.
void insertTokenForImports(Input &input);

// The device of the only token, discovered and later freed.
class OneDevice {
public:
    OneDevice();
    ~OneDevice();
    OneDevice(const OneDevice &) = delete;
    OneDevice &operator=(const OneDevice &) = delete;

    operator SPI_DEVICE_HANDLE() const { return m_device; }

private:
    SPI_DEVICESET_HANDLE m_set;
    SPI_DEVICE_HANDLE m_device;
};

} // namespace tembra::fuzz
