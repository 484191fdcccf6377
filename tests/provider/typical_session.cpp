#include "typical_session.h"

#include "tembra_key_prov.h"

#include <gtest/gtest.h>
#include <sstream>

namespace tembra::test {

Lines goldenTrace(const std::string &name) {
    Lines lines;
    std::istringstream text(readFile(TEMBRA_GOLDEN_DIR "/" + name + ".trace"));
    for (std::string line; std::getline(text, line);) {
        if (line.starts_with(">>>>> "))
            line = "[DEBUG] [call_stack_tracer::call_stack_tracer] " + line;
        else if (line.starts_with("<<<<< "))
            line = "[DEBUG] [call_stack_tracer::~call_stack_tracer] " + line;
        lines.push_back(line);
    }
    return lines;
}

std::vector<unsigned char> runTypicalSession() {
    const unsigned char digest[32] = {0x17};
    SPI_DEVICESET_HANDLE set = DeviceGetAllDevices();
    SPI_DEVICE_HANDLE device = DeviceGetDevice(set, 0);
    int tries = 0;
    EXPECT_EQ(DeviceVerifyPwd(device, TEMBRA_PWD_USER, SESSION_PIN, &tries), 1);
    SPI_KEYPAIR_HANDLE key = nullptr;
    EXPECT_EQ(DeviceFindKeypair(device, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, SESSION_LABEL, &key), 1);
    int length = 0;
    EXPECT_EQ(
        DeviceSign(key, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, digest, 32, nullptr, 0, &length), 1);
    EXPECT_EQ(length, 80);
    std::vector<unsigned char> signature(80);
    EXPECT_EQ(DeviceSign(key, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, digest, 32, signature.data(),
                         80, &length),
              1);
    signature.resize(static_cast<std::size_t>(length));
    EXPECT_EQ(DeviceFreeKeypair(key), 1);
    EXPECT_EQ(DeviceFreeDevice(device), 1);
    EXPECT_EQ(DeviceFreeDevices(set), 1);
    EXPECT_EQ(DeviceEnd(), 1);
    return signature;
}

Lines maskedTrace() {
    Lines lines;
    for (const std::string &text : trace().texts())
        lines.push_back(maskHexDump(text));
    return lines;
}

} // namespace tembra::test
