// What one input does to the provider: a fresh token, a started provider, and at the end the proof
// that nothing was lost.
#pragma once

#include "input.h"

#include "../../tests/support/scripted_token.h"
#include "tembra_key_prov.h"

namespace tembra::fuzz {

// Ends the process with a text that says what is wrong: a finding.
[[noreturn]] void report(const char *what);
inline void require(bool holds, const char *what) {
    if (!holds)
        report(what);
}

class ProviderRun {
public:
    // Takes a byte for the trace level and three for the settings.
    explicit ProviderRun(Input &input);
    // Wants every block of the provider and of the host library back, and unless forgiven every
    // handle of the token.
    ~ProviderRun();
    ProviderRun(const ProviderRun &) = delete;
    ProviderRun &operator=(const ProviderRun &) = delete;

    // The provider leaves handles open when the token or memory fails it at some places.
    void forgiveOpenHandles() { m_wantsHandlesBack = false; }
    // The host library was told to refuse what is given back to it.
    void forgiveHostBlocks() { m_wantsBlocksBack = false; }

private:
    bool m_wantsHandlesBack = true;
    bool m_wantsBlocksBack = true;
};

// A device with one application, "app", that holds these containers.
test::ApplicationModel &insertToken(std::initializer_list<test::ContainerModel> containers);

// The same with a container, "c", that has a signature key of any kind.
void insertTokenForImports(Input &input);

// The device of the only token, discovered; given back at the end of the object's life.
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
