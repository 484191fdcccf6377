#include "typical_session.h"

#include "tembra_key_prov.h"

#include <gtest/gtest.h>
#include <sstream>

namespace tembra::test {

Lines goldenLines(const std::string &text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
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
    EXPECT_EQ(DeviceVerifyPwd(device, TEMBRA_PWD_USER, sessionPin, &tries), 1);
    SPI_KEYPAIR_HANDLE key = nullptr;
    EXPECT_EQ(DeviceFindKeypair(device, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, sessionLabel, &key), 1);
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

Lines goldenInit() {
    return goldenLines(R"(>>>>> DeviceInit
[ERROR] [hasSM3] RegOpenKeyEx fail, error = 2
[INFO] [DeviceInit] hasSM3 : 0
[ERROR] [hasSM4] RegOpenKeyEx fail, error = 2
[INFO] [DeviceInit] hasSM4 : 0
[INFO] [DeviceInit] getMaxOperationLen : 1024
[ERROR] [isSupportGDKMSM2Import] RegOpenKeyEx fail, error = 2
[INFO] [DeviceInit] isSupportGDKMSM2Import : 0
<<<<< DeviceInit
)");
}

Lines goldenSession() {
    return goldenLines(R"(>>>>> DeviceGetAllDevices
[DEBUG] [addDevice] device info issuer : Test Issuer
[DEBUG] [addDevice] device info label : Test Token
[DEBUG] [addDevice] device info serial number : TEST-0123456789A
[DEBUG] [addDevice] device algo sym : 0x00000403
[DEBUG] [addDevice] device algo asym : 0x00030500
[DEBUG] [addDevice] device algo hash : 0x00000001
[DEBUG] [GetECCPublicKey] hCon : %p
[DEBUG] [GetECCPublicKey] type : 1
[DEBUG] [GetECCPublicKey] bitlen = 256, line: 0
[VERBOSE] [GetECCPublicKey] &ecc.XCoordinate[sizeof(ecc.XCoordinate) - 32][length:%d]: <hex>
[VERBOSE] [GetECCPublicKey] &ecc.YCoordinate[sizeof(ecc.YCoordinate) - 32][length:%d]: <hex>
[VERBOSE] [GetECCPublicKey] *keyblob[length:%d]: <hex>
[ERROR] [GetCertificate] SKF_ExportCertificate fail, error = 0x0A00001C
[DEBUG] [GetECCPublicKey] hCon : %p
[DEBUG] [GetECCPublicKey] type : 0
[ERROR] [GetECCPublicKey] SKF_ExportPublicKey fail, error = 0x0A00001B
[DEBUG] [addDevice] hSet->m_handles[0]=%p
<<<<< DeviceGetAllDevices
>>>>> DeviceGetDevice
[INFO] [DeviceGetDevice] hDeviceSet = %p, index = 0
<<<<< DeviceGetDevice
>>>>> DeviceVerifyPwd
[INFO] [DeviceVerifyPwd] hDevice = %p, type = 1, pwd = 12345678, *pretrynum = 0
<<<<< DeviceVerifyPwd
>>>>> DeviceFindKeypair
[INFO] [DeviceFindKeypair] hDevice = %p, int type = 2, const char *label = signer, SPI_KEYPAIR_HANDLE *phKeypair = %p
<<<<< DeviceFindKeypair
>>>>> DeviceSign
[INFO] [DeviceSign] SPI_KEYPAIR_HANDLE hKeypair = %p, int algo = 4096, const void *param = (nil), const unsigned char *tbs = %p, int tbslen = 32, unsigned char *sign = (nil), int signlen = 0, int *pretsignlen = 0
[DEBUG] [DeviceSign] DeviceSign success, sign == 0
<<<<< DeviceSign
>>>>> DeviceSign
[INFO] [DeviceSign] SPI_KEYPAIR_HANDLE hKeypair = %p, int algo = 4096, const void *param = (nil), const unsigned char *tbs = %p, int tbslen = 32, unsigned char *sign = %p, int signlen = 80, int *pretsignlen = 80
[DEBUG] [DeviceSign] DeviceSign success
<<<<< DeviceSign
>>>>> DeviceFreeKeypair
[INFO] [DeviceFreeKeypair] hKeypair = %p
[INFO] [DeviceFreeKeypair] freeDevice hKeypair->m_device success, hKeypair->m_device=%p
>>>>> DeviceFreeDevice
[INFO] [DeviceFreeDevice] hDevice = %p
[INFO] [DeviceFreeDevice] hDevice->m_refCount=3, hDevice->m_keypairCount=1, hDevice->m_hashCount=0, hDevice->m_cipherCount=0
<<<<< DeviceFreeDevice
<<<<< DeviceFreeKeypair
>>>>> DeviceFreeDevice
[INFO] [DeviceFreeDevice] hDevice = %p
[INFO] [DeviceFreeDevice] hDevice->m_refCount=2, hDevice->m_keypairCount=1, hDevice->m_hashCount=0, hDevice->m_cipherCount=0
<<<<< DeviceFreeDevice
>>>>> DeviceFreeDevices
[DEBUG] [DeviceFreeDevices]  hDeviceSet = %p, hDeviceSet->m_allocCount=16, hDeviceSet->m_count=1, hDeviceSet->m_handles[0]=%p
[INFO] [DeviceFreeDevices] hDeviceSet->m_handles[0]=%p
>>>>> DeviceFreeDevice
[INFO] [DeviceFreeDevice] hDevice = %p
[INFO] [DeviceFreeDevice] hDevice->m_refCount=1, hDevice->m_keypairCount=1, hDevice->m_hashCount=0, hDevice->m_cipherCount=0
<<<<< DeviceFreeDevice
<<<<< DeviceFreeDevices
>>>>> DeviceEnd
<<<<< DeviceEnd
)");
}

Lines maskedTrace() {
    Lines lines;
    for (const std::string &text : trace().texts())
        lines.push_back(maskHexDump(text));
    return lines;
}

} // namespace tembra::test
