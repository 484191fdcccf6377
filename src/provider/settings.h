// The four settings, which DeviceInit reads from the registry key
// HKEY_LOCAL_MACHINE\Software\ORVEL\PKI\Devices\TembraKey.
#pragma once

#include <cstdint>

namespace tembra {

extern std::uint32_t g_hasSM3;               // HasSM3: SM3 may be reported
extern std::uint32_t g_hasSM4;               // HasSM4: SM4 may be reported
extern std::int32_t g_maxOperationLen;       // MaxOperationLen: bytes per token call
extern std::uint32_t g_supportGDKMSM2Import; // SupportGDKMSM2Import: the 48-byte form of d

// Each reads its value. A value that is missing or has another type counts as the default, which is
// logged except for MaxOperationLen.
std::uint32_t hasSM3();
std::uint32_t hasSM4();
std::int32_t getMaxOperationLen();
std::uint32_t isSupportGDKMSM2Import();

} // namespace tembra
