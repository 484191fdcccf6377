// The provider over the development kit's own libraries: what runs natively runs against the DLLs
// as well.
#pragma once

#include "process_environment.h"
#include "tembra_key_prov.h"
#include "trace_capture.h"

#include <gtest/gtest.h>

namespace tembra::test {

using Bytes = std::vector<unsigned char>;

class KitTest : public ::testing::Test {
protected:
    static constexpr const char *adminPin = "admin-12345";
    static constexpr const char *userPin = "12345678";

    // A token in a directory of its own with the application "app", a started provider, the trace
    // at level verbose and marked.
    void SetUp() override;
    // Frees everything, ends the provider and wants every handle of the kit back.
    void TearDown() override;

    void discover(); // anew, logged out
    void logIn();
    // The pair of this kind, or a new signature pair; given back at the end.
    SPI_KEYPAIR_HANDLE find(const char *label, int type);
    SPI_KEYPAIR_HANDLE generate(const char *label, int algo, int bits);
    void release();

    TemporaryDirectory directory;
    std::string token;
    SPI_DEVICESET_HANDLE set = nullptr;
    SPI_DEVICE_HANDLE device = nullptr;
    bool started = false;
    bool keepsDevice = false; // by contract, after a deletion

private:
    std::vector<SPI_KEYPAIR_HANDLE> pairs_;
};

} // namespace tembra::test
