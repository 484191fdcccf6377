// What the tests of key pair import over the scripted token share.
#pragma once

#include "key_pair_blobs.h"
#include "scripted_test.h"

namespace tembra::test {

// One container, "c", with a signature key. Imports report what they leave behind.
class ImportTest : public ScriptedTest {
protected:
    // The blob lies in a heap block of exactly its size. Checks that the handle is written on
    // success only, and keeps it to be freed at the end; the trace is marked before the call.
    int import(const Bytes &blob, const char *label = "c") {
        const std::unique_ptr<unsigned char[]> exact(new unsigned char[blob.size()]);
        std::copy(blob.begin(), blob.end(), exact.get());
        const auto untouched = reinterpret_cast<SPI_KEYPAIR_HANDLE>(this);
        SPI_KEYPAIR_HANDLE handle = untouched;
        mark();
        const int result = DeviceImportKeypair(m_device, exact.get(), static_cast<int>(blob.size()),
                                               ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, label, &handle);
        EXPECT_EQ(handle != untouched, result == 1);
        if (result == 1)
            m_imported.push_back(handle);
        return result;
    }

    void TearDown() override {
        freeImported();
        ScriptedTest::TearDown();
    }
    void freeImported() {
        for (SPI_KEYPAIR_HANDLE handle : m_imported)
            DeviceFreeKeypair(handle);
        m_imported.clear();
    }

    std::vector<SPI_KEYPAIR_HANDLE> m_imported;
};

inline constexpr const char *TOO_SHORT_FOR_NUMBER = "keyblobLen - pos < 4";

} // namespace tembra::test
