// The capability query: a table of the tests for each algorithm, in order, with their messages.
#include "log/trace.h"
#include "provider/records.h"
#include "provider/settings.h"

#include <cstring>

using namespace tembra;

namespace {

enum class Test {
    none,
    hasSM3,
    hasSM4,
    usage,   // one of the usages whose bits are set
    symAll,  // all bits in AlgSymCap
    asymAll, // all bits in AlgAsymCap
    asymAny, // any bit in AlgAsymCap
    hashAny, // any bit in AlgHashCap
    paramNull,
    paramSet,
    paramHash, // param points to this hash algorithm
    rsaKeyLen,
    eccTemp,
    eccCurve
};

struct Check {
    Test test;
    std::uint32_t operand;
    const char *message; // null: a failure writes nothing
};

struct Row {
    int algo;
    Check checks[6];
    const char *supported; // null: an answer of 1 writes nothing
};

consteval std::uint32_t usages(int a) {
    return 1u << a;
}
consteval std::uint32_t usages(int a, int b) {
    return 1u << a | 1u << b;
}
consteval std::uint32_t usages(int a, int b, int c) {
    return 1u << a | 1u << b | 1u << c;
}

constexpr std::uint32_t CIPHER = usages(ORVEL_PKI_USAGE_ENCRYPT, ORVEL_PKI_USAGE_DECRYPT);
constexpr std::uint32_t CIPHER_OR_IMPORT =
    usages(ORVEL_PKI_USAGE_ENCRYPT, ORVEL_PKI_USAGE_DECRYPT, ORVEL_PKI_USAGE_IMPORTKEYPAIR);
constexpr std::uint32_t DECRYPT = usages(ORVEL_PKI_USAGE_DECRYPT);
constexpr std::uint32_t SIGN = usages(TEMBRA_USAGE_SIGN);
constexpr std::uint32_t GENKEYPAIR = usages(ORVEL_PKI_USAGE_GENKEYPAIR);
constexpr const char *NOT_GENKEYPAIR = "usage != ORVEL_PKI_USAGE_GENKEYPAIR";
constexpr const char *NOT_CURVE = "eccParam->m_curve != ORVEL_PKI_ECC_CURVE_SM2";
constexpr int HOST_ALGORITHM_30 = 0x30;

// Some messages state the requirement, one its negation, and SM2 generation reports a missing
// capability as a wrong curve. People search traces for these texts, so they must not change.
// clang-format off
const Row ROWS[] = {
    {ORVEL_PKI_ALGORITHM_SM3,
     {{Test::hasSM3, 0, "g_hasSM3 == 0 "},
      {Test::usage, usages(ORVEL_PKI_USAGE_HASH), nullptr},
      {Test::hashAny, SGD_SM3, "hDevice->m_info.AlgHashCap&SGD_SM3) == 0 "}},
     "Device support algo=ORVEL_PKI_ALGORITHM_SM3, usage=ORVEL_PKI_USAGE_HASH"},
    {ORVEL_PKI_ALGORITHM_SSF33_ECB,
     {{Test::usage, CIPHER, nullptr},
      {Test::symAll, SGD_SSF33_ECB, "(hDevice->m_info.AlgSymCap & 0xFF & 0x1) != 0 && (hDevice->m_info.AlgSymCap & 0xFFFFFF00 & 0x200) != 0"}},
     "Device support algo=ORVEL_PKI_ALGORITHM_SSF33_ECB, usage=ORVEL_PKI_USAGE_ENCRYPT || ORVEL_PKI_USAGE_DECRYPT"},
    {ORVEL_PKI_ALGORITHM_SSF33_CBC,
     {{Test::usage, CIPHER, nullptr},
      {Test::symAll, SGD_SSF33_CBC, "(hDevice->m_info.AlgSymCap & 0xFF & 0x2) != 0 && (hDevice->m_info.AlgSymCap & 0xFFFFFF00 & 0x200) != 0"}},
     "Device support algo=ORVEL_PKI_ALGORITHM_SSF33_CBC, usage=ORVEL_PKI_USAGE_ENCRYPT || ORVEL_PKI_USAGE_DECRYPT"},
    {ORVEL_PKI_ALGORITHM_SM1_ECB,
     {{Test::usage, CIPHER_OR_IMPORT, nullptr},
      {Test::symAll, SGD_SM1_ECB, "(hDevice->m_info.AlgSymCap & 0xFF & 0x1) != 0 && (hDevice->m_info.AlgSymCap & 0xFFFFFF00 & 0x100) != 0"}},
     "Device support algo=ORVEL_PKI_ALGORITHM_SM1_ECB, usage=ORVEL_PKI_USAGE_ENCRYPT || ORVEL_PKI_USAGE_DECRYPT || ORVEL_PKI_USAGE_IMPORTKEYPAIR"},
    {ORVEL_PKI_ALGORITHM_SM1_CBC,
     {{Test::usage, CIPHER, nullptr},
      {Test::symAll, SGD_SM1_CBC, "(hDevice->m_info.AlgSymCap & 0xFF & 0x2) != 0 && (hDevice->m_info.AlgSymCap & 0xFFFFFF00 & 0x100) != 0"}},
     "Device support algo=ORVEL_PKI_ALGORITHM_SM1_CBC, usage= ORVEL_PKI_USAGE_ENCRYPT || ORVEL_PKI_USAGE_DECRYPT"},
    {ORVEL_PKI_ALGORITHM_SMS4_ECB,
     {{Test::hasSM4, 0, nullptr},
      {Test::usage, CIPHER, nullptr},
      {Test::symAll, SGD_SMS4_ECB, "(hDevice->m_info.AlgSymCap & 0xFF & 0x1) == 0 || (hDevice->m_info.AlgSymCap & 0xFFFFFF00 & 0x400) == 0"}},
     "Device support algo=ORVEL_PKI_ALGORITHM_SMS4_ECB, usage= ORVEL_PKI_USAGE_ENCRYPT || ORVEL_PKI_USAGE_DECRYPT"},
    {ORVEL_PKI_ALGORITHM_SMS4_CBC,
     {{Test::hasSM4, 0, nullptr},
      {Test::usage, CIPHER, nullptr},
      {Test::symAll, SGD_SMS4_CBC, "(hDevice->m_info.AlgSymCap & 0xFF & 0x2) != 0 && (hDevice->m_info.AlgSymCap & 0xFFFFFF00 & 0x400) != 0"}},
     "Device support algo=ORVEL_PKI_ALGORITHM_SMS4_CBC, usage= ORVEL_PKI_USAGE_ENCRYPT || ORVEL_PKI_USAGE_DECRYPT"},
    {HOST_ALGORITHM_30, {{Test::usage, DECRYPT, nullptr}}, nullptr},
    {ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC, {{Test::usage, DECRYPT, nullptr}}, nullptr},
    {ORVEL_PKI_ALGORITHM_SM2_ENC,
     {{Test::usage, DECRYPT, nullptr},
      {Test::asymAll, SGD_SM2_3, nullptr},
      {Test::paramSet, 0, nullptr},
      {Test::paramHash, ORVEL_PKI_ALGORITHM_SM3, nullptr}},
     nullptr},
    {ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN,
     {{Test::usage, SIGN, nullptr}, {Test::asymAll, SGD_RSA, nullptr}},
     nullptr},
    {ORVEL_PKI_ALGORITHM_SM2_SIGN,
     {{Test::usage, SIGN, nullptr}, {Test::asymAll, SGD_SM2_1, nullptr}},
     nullptr},
    {ORVEL_PKI_ALGORITHM_RSA,
     {{Test::usage, GENKEYPAIR, NOT_GENKEYPAIR},
      {Test::paramNull, 0, nullptr},
      {Test::rsaKeyLen, 0, "keyLen != 1024 || keyLen != 2048"}},
     nullptr},
    {ORVEL_PKI_ALGORITHM_ECC,
     {{Test::usage, GENKEYPAIR, NOT_GENKEYPAIR},
      {Test::paramSet, 0, "eccParam == 0"},
      {Test::eccTemp, 0, "eccParam->m_temp = 1"},
      {Test::eccCurve, ORVEL_PKI_ECC_CURVE_SM2, NOT_CURVE},
      {Test::asymAny, SGD_SM2_1, NOT_CURVE}},
     nullptr},
};
// clang-format on

struct Query {
    const DEVINFO &info;
    int keyLen;
    int usage;
    const void *param;
};

int hashAt(const void *param) {
    int algo = 0;
    std::memcpy(&algo, param, sizeof(algo));
    return algo;
}

bool passes(const Check &check, const Query &query) {
    const std::uint32_t bits = check.operand;
    const auto *eccParam = static_cast<const TembraEccParam *>(query.param);
    switch (check.test) {
    case Test::none: return true;
    case Test::hasSM3: return g_hasSM3 != 0;
    case Test::hasSM4: return g_hasSM4 != 0;
    case Test::usage: return query.usage >= 0 && query.usage < 32 && (bits >> query.usage & 1u);
    case Test::symAll: return (query.info.AlgSymCap & bits) == bits;
    case Test::asymAll: return (query.info.AlgAsymCap & bits) == bits;
    case Test::asymAny: return (query.info.AlgAsymCap & bits) != 0;
    case Test::hashAny: return (query.info.AlgHashCap & bits) != 0;
    case Test::paramNull: return query.param == nullptr;
    case Test::paramSet: return query.param != nullptr;
    case Test::paramHash: return hashAt(query.param) == static_cast<int>(bits);
    case Test::rsaKeyLen: return query.keyLen == 1024 || query.keyLen == 2048;
    case Test::eccTemp: return eccParam->m_temp == 0;
    case Test::eccCurve: return eccParam->m_curve == static_cast<std::int32_t>(bits);
    }
    return false;
}

int answerRow(const Row &row, const Query &query, const char *function) {
    for (const Check &check : row.checks) {
        if (passes(check, query))
            continue;
        if (check.message)
            TEMBRA_TRACE(TraceLevel::warning, function, "%s", check.message);
        return 0;
    }
    if (row.supported)
        TEMBRA_TRACE(TraceLevel::debug, function, "%s", row.supported);
    return 1;
}

} // namespace

int DeviceIsSupportedAlgorithm2(SPI_DEVICE_HANDLE hDevice, int algo, int keyLen, int usage,
                                const void *param) {
    const call_stack_tracer tracer("DeviceIsSupportedAlgorithm2");
    TRACE_DEBUG("algo : 0x%08x", static_cast<unsigned>(algo));
    TRACE_DEBUG("keyLen : %d", keyLen);
    TRACE_DEBUG("usage : %d", usage);
    if (!hDevice)
        return 0;
    for (const Row &row : ROWS)
        if (row.algo == algo)
            return answerRow(row, {hDevice->m_info, keyLen, usage, param}, __func__);
    return 0;
}
