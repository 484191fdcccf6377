// The provider over the development kit's own libraries: what runs natively runs against the DLLs
// as well.
#pragma once

#include "held_handles.h"
#include "process_environment.h"
#include "trace_capture.h"

#include <gtest/gtest.h>

namespace tembra::test {

using Bytes = std::vector<unsigned char>;

class KitTest : public ::testing::Test, protected HeldHandles {
protected:
    static constexpr const char *ADMIN_PIN = "admin-12345";
    static constexpr const char *USER_PIN = "12345678";

    // A token in a directory of its own with the application "app", a started provider, the trace
    // at level verbose and marked.
    void SetUp() override;
    // Frees everything, ends the provider and wants every handle of the kit back.
    void TearDown() override;

    void discover(); // anew, logged out
    void logIn();
    // A new signature pair, given back at the end.
    SPI_KEYPAIR_HANDLE generate(const char *label, int algo, int bits);
    // What the host library makes of a plaintext under the pair's public key.
    static Bytes encrypted(SPI_KEYPAIR_HANDLE pair, int algo, const void *param,
                           const Bytes &plain);

    TemporaryDirectory m_directory;
    std::string m_token;
    bool m_started = false;
    bool m_keepsDevice = false; // by contract, after a deletion
    unsigned long long m_handlesBefore = 0, m_blocksBefore = 0;
};

} // namespace tembra::test
