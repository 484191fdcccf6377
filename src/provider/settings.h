// The four settings, read once by DeviceInit from the registry key
// HKEY_LOCAL_MACHINE\Software\ORVEL\PKI\Devices\TembraKey.
#pragma once

#include <cstdint>

namespace tembra {

extern std::uint32_t g_hasSM3;               // HasSM3: the token's SM3 may be claimed
extern std::uint32_t g_hasSM4;               // HasSM4: the token's SM4 may be claimed
extern std::int32_t g_maxOperationLen;       // MaxOperationLen: bytes a token call is fed
extern std::uint32_t g_supportGDKMSM2Import; // SupportGDKMSM2Import: the 48-byte form of d

// Each reads its value anew; what is missing or of another type is written to the trace (but for
// MaxOperationLen) and counts as the default.
std::uint32_t hasSM3();
std::uint32_t hasSM4();
std::int32_t getMaxOperationLen();
std::uint32_t isSupportGDKMSM2Import();

} // namespace tembra
