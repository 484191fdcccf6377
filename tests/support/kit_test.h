// The provider over the development kit's libraries: these tests run natively and against the DLLs.
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

    // Creates a token with the application "app" in its own directory, starts the provider, and
    // marks the trace, at level verbose.
    void SetUp() override;
    // Frees everything, ends the provider and requires that all handles of the kit are closed.
    void TearDown() override;

    void discover(); // again, logged out
    void logIn();
    // A new signature key pair, freed at the end.
    SPI_KEYPAIR_HANDLE generate(const char *label, int algo, int bits);
    // The plaintext encrypted by the host library with the pair's public key.
    static Bytes encrypted(SPI_KEYPAIR_HANDLE pair, int algo, const void *param,
                           const Bytes &plain);

    TemporaryDirectory m_directory;
    std::string m_token;
    bool m_started = false;
    bool m_keepsDevice = false; // by contract, after a deletion
    unsigned long long m_handlesBefore = 0, m_blocksBefore = 0;
};

} // namespace tembra::test
