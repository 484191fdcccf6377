// DeviceIsSupportedAlgorithm2, row by row.
#include "scripted_test.h"

namespace tembra::test {
namespace {

constexpr int SM3 = 0x7000, SSF33_ECB = 0x03000000, SSF33_CBC = 0x03400000, SM1_ECB = 0x03C00000,
              SM1_CBC = 0x04000000, SM4_ECB = 0x04800000, SM4_CBC = 0x04C00000;

const int HASH_SM3 = SM3;
const int HASH_OTHER = 0x7001;
const TembraEccParam CURVE_SM2 = {7, 0};
const TembraEccParam CURVE_OTHER = {6, 0};
const TembraEccParam TEMPORARY = {7, 1};

struct Row {
    int algo, keyLen, usage;
    const void *param;
    ULONG sym, asym, hash; // what the token says it can
    int result;
    std::string line; // the last one before the exit line, "" when there is none
};

std::string say(const std::string &message) {
    return debug("DeviceIsSupportedAlgorithm2", message);
}
std::string refuse(const std::string &message) {
    return warning("DeviceIsSupportedAlgorithm2", message);
}
std::string needs(const char *mode, const char *algorithm) {
    return refuse(std::string("(hDevice->m_info.AlgSymCap & 0xFF & ") + mode +
                  ") != 0 && (hDevice->m_info.AlgSymCap & 0xFFFFFF00 & " + algorithm + ") != 0");
}
std::string supports(const std::string &name, const std::string &usage) {
    return say("Device support algo=ORVEL_PKI_ALGORITHM_" + name + ", usage=" + usage);
}

class Capability : public ScriptedTest {
protected:
    void expectRows(const std::vector<Row> &rows) {
        addToken({});
        trace().setLevel("4");
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const Row &row = rows[i];
            DEVINFO &info = script().memory.devices.front().info;
            info.AlgSymCap = row.sym;
            info.AlgAsymCap = row.asym;
            info.AlgHashCap = row.hash;
            discover();
            EXPECT_EQ(
                DeviceIsSupportedAlgorithm2(m_device, row.algo, row.keyLen, row.usage, row.param),
                row.result)
                << "row " << i;
            Lines lines = trace().texts();
            ASSERT_GE(lines.size(), 5u);
            char algo[32];
            std::snprintf(algo, sizeof algo, "algo : 0x%08x", static_cast<unsigned>(row.algo));
            EXPECT_EQ(Lines(lines.begin() + 1, lines.begin() + 4),
                      (Lines{say(algo), say("keyLen : " + std::to_string(row.keyLen)),
                             say("usage : " + std::to_string(row.usage))}));
            EXPECT_EQ(Lines(lines.begin() + 4, lines.end() - 1),
                      row.line.empty() ? Lines{} : Lines{row.line})
                << "row " << i;
        }
    }
};

TEST_F(Capability, WithDefaultSettings) {
    const ULONG all = 0xFFFFFFFF;
    const std::string encDec = "ORVEL_PKI_USAGE_ENCRYPT || ORVEL_PKI_USAGE_DECRYPT";
    const std::string genOnly = refuse("usage != ORVEL_PKI_USAGE_GENKEYPAIR");
    const std::string rsaBits = refuse("keyLen != 1024 || keyLen != 2048");
    const std::string curve = refuse("eccParam->m_curve != ORVEL_PKI_ECC_CURVE_SM2");
    expectRows({
        {SM3, 0, 3, nullptr, all, all, all, 0, refuse("g_hasSM3 == 0 ")},
        {SM3, 0, 1, nullptr, all, all, all, 0, refuse("g_hasSM3 == 0 ")},
        {SM4_ECB, 0, 1, nullptr, all, all, all, 0, ""},
        {SM4_CBC, 0, 1, nullptr, 0x402, all, all, 0, ""},
        {SSF33_ECB, 0, 1, nullptr, 0x201, 0, 0, 1, supports("SSF33_ECB", encDec)},
        {SSF33_ECB, 0, 2, nullptr, 0x200, 0, 0, 0, needs("0x1", "0x200")},
        {SSF33_ECB, 0, 11, nullptr, all, 0, 0, 0, ""},
        {SSF33_CBC, 0, 2, nullptr, 0x202, 0, 0, 1, supports("SSF33_CBC", encDec)},
        {SSF33_CBC, 0, 1, nullptr, 0x201, 0, 0, 0, needs("0x2", "0x200")},
        {SSF33_CBC, 0, 3, nullptr, all, 0, 0, 0, ""},
        {SM1_ECB, 0, 1, nullptr, 0x101, 0, 0, 1,
         supports("SM1_ECB", encDec + " || ORVEL_PKI_USAGE_IMPORTKEYPAIR")},
        {SM1_ECB, 0, 11, nullptr, 0x101, 0, 0, 1,
         supports("SM1_ECB", encDec + " || ORVEL_PKI_USAGE_IMPORTKEYPAIR")},
        {SM1_ECB, 0, 11, nullptr, 0x001, 0, 0, 0, needs("0x1", "0x100")},
        {SM1_ECB, 0, 7, nullptr, all, 0, 0, 0, ""},
        {SM1_CBC, 0, 2, nullptr, 0x102, 0, 0, 1, supports("SM1_CBC", " " + encDec)},
        {SM1_CBC, 0, 1, nullptr, 0x101, 0, 0, 0, needs("0x2", "0x100")},
        {SM1_CBC, 0, 11, nullptr, all, 0, 0, 0, ""},
        {0x30, 0, 2, nullptr, 0, 0, 0, 1, ""},
        {0x30, 0, 1, nullptr, all, all, all, 0, ""},
        {0x10, 0, 2, nullptr, 0, 0, 0, 1, ""},
        {0x10, 0, 5, nullptr, all, all, all, 0, ""},
        {0x40, 0, 2, &HASH_SM3, 0, 0x20400, 0, 1, ""},
        {0x40, 0, 2, &HASH_SM3, 0, 0x20000, 0, 0, ""},
        {0x40, 0, 2, nullptr, 0, 0x20400, 0, 0, ""},
        {0x40, 0, 2, &HASH_OTHER, 0, 0x20400, 0, 0, ""},
        {0x40, 0, 1, &HASH_SM3, 0, 0x20400, 0, 0, ""},
        {0x100, 0, 5, nullptr, 0, 0x10000, 0, 1, ""},
        {0x100, 0, 5, nullptr, 0, 0x20100, 0, 0, ""},
        {0x100, 0, 2, nullptr, 0, 0x10000, 0, 0, ""},
        {0x1000, 0, 5, nullptr, 0, 0x20100, 0, 1, ""},
        {0x1000, 0, 5, nullptr, 0, 0x00100, 0, 0, ""},
        {0x1000, 0, 1, nullptr, 0, 0x20100, 0, 0, ""},
        {1, 2048, 7, nullptr, 0, 0, 0, 1, ""},
        {1, 1024, 7, nullptr, 0, 0, 0, 1, ""},
        {1, 1536, 7, nullptr, 0, 0, 0, 0, rsaBits},
        {1, 2048, 7, &CURVE_SM2, 0, 0, 0, 0, ""},
        {1, 2048, 5, nullptr, 0, 0, 0, 0, genOnly},
        {4, 0, 7, &CURVE_SM2, 0, 0x00100, 0, 1, ""},
        {4, 0, 7, &CURVE_SM2, 0, 0x20000, 0, 1, ""},
        {4, 0, 7, &CURVE_SM2, 0, 0x10400, 0, 0, curve},
        {4, 0, 7, &CURVE_OTHER, 0, 0x20100, 0, 0, curve},
        {4, 0, 7, &TEMPORARY, 0, 0x20100, 0, 0, refuse("eccParam->m_temp = 1")},
        {4, 0, 7, nullptr, 0, 0x20100, 0, 0, refuse("eccParam == 0")},
        {4, 0, 11, &CURVE_SM2, 0, 0x20100, 0, 0, genOnly},
        {2, 0, 7, nullptr, all, all, all, 0, ""},
        {-1, -1, -1, nullptr, all, all, all, 0, ""},
    });
}

TEST_F(Capability, WithSm3AndSm4SwitchedOn) {
    restart("\"HasSM3\"=dword:00000001\r\n\"HasSM4\"=dword:00000002\r\n");
    const std::string usage = " ORVEL_PKI_USAGE_ENCRYPT || ORVEL_PKI_USAGE_DECRYPT";
    expectRows({
        {SM3, 0, 3, nullptr, 0, 0, 1, 1, supports("SM3", "ORVEL_PKI_USAGE_HASH")},
        {SM3, 0, 1, nullptr, 0, 0, 1, 0, ""},
        {SM3, 0, 3, nullptr, 0, 0, 2, 0, refuse("hDevice->m_info.AlgHashCap&SGD_SM3) == 0 ")},
        {SM4_ECB, 0, 1, nullptr, 0x401, 0, 0, 1, supports("SMS4_ECB", usage)},
        {SM4_ECB, 0, 2, nullptr, 0x400, 0, 0, 0,
         refuse("(hDevice->m_info.AlgSymCap & 0xFF & 0x1) == 0 || (hDevice->m_info.AlgSymCap & "
                "0xFFFFFF00 "
                "& 0x400) == 0")},
        {SM4_ECB, 0, 11, nullptr, 0x401, 0, 0, 0, ""},
        {SM4_CBC, 0, 2, nullptr, 0x402, 0, 0, 1, supports("SMS4_CBC", usage)},
        {SM4_CBC, 0, 1, nullptr, 0x001, 0, 0, 0, needs("0x2", "0x400")},
        {SM4_CBC, 0, 11, nullptr, 0x402, 0, 0, 0, ""},
    });
}

} // namespace
} // namespace tembra::test
