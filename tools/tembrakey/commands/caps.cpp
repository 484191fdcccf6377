#include "tembrakey/commands/device_command.h"

namespace tembra::tool {

namespace {

const int SM3 = ORVEL_PKI_ALGORITHM_SM3;
const TembraEccParam SM2_CURVE = {ORVEL_PKI_ECC_CURVE_SM2, 0};

// One question to the provider.
struct Question {
    const char *algorithm;
    const char *usage;
    int algorithmId;
    int bits;
    int usageId;
    const void *param;
};

const Question QUESTIONS[] = {
    {"SM2", N_("generate a key pair"), ORVEL_PKI_ALGORITHM_ECC, 256, ORVEL_PKI_USAGE_GENKEYPAIR,
     &SM2_CURVE},
    {"SM2", N_("sign"), ORVEL_PKI_ALGORITHM_SM2_SIGN, 0, TEMBRA_USAGE_SIGN, nullptr},
    {"SM2", N_("decrypt"), ORVEL_PKI_ALGORITHM_SM2_ENC, 0, ORVEL_PKI_USAGE_DECRYPT, &SM3},
    {"RSA-1024", N_("generate a key pair"), ORVEL_PKI_ALGORITHM_RSA, 1024,
     ORVEL_PKI_USAGE_GENKEYPAIR, nullptr},
    {"RSA-2048", N_("generate a key pair"), ORVEL_PKI_ALGORITHM_RSA, 2048,
     ORVEL_PKI_USAGE_GENKEYPAIR, nullptr},
    {"RSA PKCS#1 v1.5", N_("sign"), ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN, 0, TEMBRA_USAGE_SIGN,
     nullptr},
    {"RSA PKCS#1 v1.5", N_("decrypt"), ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC, 0,
     ORVEL_PKI_USAGE_DECRYPT, nullptr},
    {"SM3", N_("hash"), ORVEL_PKI_ALGORITHM_SM3, 0, ORVEL_PKI_USAGE_HASH, nullptr},
    {"SM4-ECB", N_("encrypt"), ORVEL_PKI_ALGORITHM_SMS4_ECB, 0, ORVEL_PKI_USAGE_ENCRYPT, nullptr},
    {"SM4-CBC", N_("encrypt"), ORVEL_PKI_ALGORITHM_SMS4_CBC, 0, ORVEL_PKI_USAGE_ENCRYPT, nullptr},
    {"SM1-ECB", N_("encrypt"), ORVEL_PKI_ALGORITHM_SM1_ECB, 0, ORVEL_PKI_USAGE_ENCRYPT, nullptr},
    {"SM1-CBC", N_("encrypt"), ORVEL_PKI_ALGORITHM_SM1_CBC, 0, ORVEL_PKI_USAGE_ENCRYPT, nullptr},
    {"SM1-ECB", N_("import a key pair"), ORVEL_PKI_ALGORITHM_SM1_ECB, 0,
     ORVEL_PKI_USAGE_IMPORTKEYPAIR, nullptr},
    {"SSF33-ECB", N_("encrypt"), ORVEL_PKI_ALGORITHM_SSF33_ECB, 0, ORVEL_PKI_USAGE_ENCRYPT,
     nullptr},
    {"SSF33-CBC", N_("encrypt"), ORVEL_PKI_ALGORITHM_SSF33_CBC, 0, ORVEL_PKI_USAGE_ENCRYPT,
     nullptr},
};

class Caps final : public DeviceCommand {
public:
    void describe(Arguments &) override {}

private:
    void work(const Console &console, const Device &device) override;
};

void Caps::work(const Console &console, const Device &device) {
    Json rows = Json::array();
    std::string text;
    for (const Question &one : QUESTIONS) {
        const bool yes =
            device.session()->DeviceIsSupportedAlgorithm2(device.get(), one.algorithmId, one.bits,
                                                          one.usageId, one.param) == TEMBRA_SUCCESS;
        rows.push_back({{"algorithm", one.algorithm}, {"usage", one.usage}, {"supported", yes}});
        char line[64];
        std::snprintf(line, sizeof line, "%-16s ", one.algorithm);
        text += (text.empty() ? "" : "\n") + std::string(yes ? "+ " : "- ") + line + tr(one.usage);
    }
    console.result({{"capabilities", rows}}, text);
}

} // namespace

const CommandEntry capsCommand = {
    "caps", N_("Show which algorithms the token supports (+ yes, - no)"),
    N_("SM3 and SM4 also need the provider's settings HasSM3 and HasSM4."),
    "  tembrakey caps\n"
    "  tembrakey --device 1 caps --json",
    make<Caps>};

} // namespace tembra::tool
