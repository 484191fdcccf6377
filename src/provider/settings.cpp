#include "provider/settings.h"

#include "log/trace.h"
#include "platform/registry.h"

namespace tembra {

namespace {

constexpr std::int32_t DEFAULT_OPERATION_LEN = 1024;
constexpr std::uint32_t BLOCK_LEN = 16;

platform::RegistryAnswer query(const char *name) {
    return platform::queryRegistryValue("Software\\ORVEL\\PKI\\Devices\\TembraKey", name);
}

bool isDword(const platform::RegistryAnswer &answer) {
    return answer.openResult == 0 && answer.queryResult == 0 &&
           answer.type == platform::REGISTRY_TYPE_DWORD;
}

// complaint begins the line for a failed query or a wrong type.
std::uint32_t readFlag(const char *name, const char *complaint, const char *function) {
    const platform::RegistryAnswer answer = query(name);
    if (isDword(answer))
        return answer.data;
    if (answer.openResult != 0)
        TEMBRA_TRACE(TraceLevel::error, function, "RegOpenKeyEx fail, error = %d",
                     answer.openResult);
    else
        TEMBRA_TRACE(TraceLevel::error, function, "%s, error = %d", complaint, answer.queryResult);
    return 0;
}

} // namespace

std::uint32_t g_hasSM3 = 0;
std::uint32_t g_hasSM4 = 0;
std::int32_t g_maxOperationLen = DEFAULT_OPERATION_LEN;
std::uint32_t g_supportGDKMSM2Import = 0;

std::uint32_t hasSM3() {
    return readFlag("HasSM3", "unsupport HasSM3", __func__);
}

std::uint32_t hasSM4() {
    return readFlag("HasSM4", "unsupport HasSM4", __func__);
}

std::uint32_t isSupportGDKMSM2Import() {
    return readFlag("SupportGDKMSM2Import", "RegQueryValueEx fail", __func__);
}

std::int32_t getMaxOperationLen() {
    const platform::RegistryAnswer answer = query("MaxOperationLen");
    if (!isDword(answer) || static_cast<std::int32_t>(answer.data) <= 0)
        return DEFAULT_OPERATION_LEN;
    // A value near 2^31 becomes negative; its users allow for that.
    return static_cast<std::int32_t>((answer.data + BLOCK_LEN - 1) / BLOCK_LEN * BLOCK_LEN);
}

} // namespace tembra
