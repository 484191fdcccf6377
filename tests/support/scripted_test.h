// What the tests over the scripted token share: a fresh token, a started provider, and at the end
// the proof that nothing was left behind.
#pragma once

#include "held_handles.h"
#include "leaks.h"
#include "scripted_token.h"
#include "trace_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tembra::test {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A line of the trace: error("DeviceSign", "hKeypair == 0") is the one that this check writes.
struct LineAt {
    const char *level;
    std::string operator()(const std::string &function, const std::string &message) const {
        return std::string("[") + level + "] [" + function + "] " + message;
    }
};
inline constexpr LineAt error{"ERROR"}, warning{"WARN"}, info{"INFO"}, debug{"DEBUG"},
    verbose{"VERBOSE"};
// What trace().failures() holds after one error, or without a message: nothing.
Lines errors(const std::string &function, const char *message);
inline Lines errors(const std::string &function, const std::string &message) {
    return errors(function, message.empty() ? nullptr : message.c_str());
}
// The message with the number for its %u; "" for null.
std::string withNumber(const char *message, ULONG number);

class ScriptedTest : public ::testing::Test, protected HeldHandles {
protected:
    // A started provider with default settings over a token without devices; the trace at its
    // default level, marked.
    void SetUp() override;
    // Frees what is still held, ends the provider, and wants every handle and block back.
    void TearDown() override;

    // Starts again with these lines in the settings section.
    void restart(const std::string &settings);

    // A device "key" with the application "app" holding these containers.
    ApplicationModel &addToken(std::initializer_list<ContainerModel> containers);
    // Discovers, takes the device and marks the trace. Earlier handles are freed first.
    void discover(int index = 0);
    // addToken() and discover().
    ApplicationModel &insert(std::initializer_list<ContainerModel> containers);
    // A handle to the pair, given back at the end; the trace is marked.
    SPI_KEYPAIR_HANDLE pair(const char *label, int type);
    // Frees everything and forgets tokens, records and scripts.
    void resetDevices();
    // Takes back every answer that the test has set.
    void restoreFunctions();

    // The test leaves a device or handles open by contract, or has looked at them itself.
    void keepsHandlesOpen() { m_expectsNoOpenHandles = false; }
    // m_refCount after the next DeviceFreeDevice, as that writes it.
    int referencesAfterRelease();
    // Calls made since the trace was marked last through mark().
    std::vector<std::string> callsSinceMark() const;
    void mark();

private:
    bool lockIsFree() const;

    TemporaryDirectory m_directory;
    std::size_t m_journalMark = 0;
    bool m_expectsNoOpenHandles = true;
};

Bytes bytesOf(const std::string &text);

} // namespace tembra::test
