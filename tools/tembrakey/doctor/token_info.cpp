// What a token says of itself.
#include "tembrakey/doctor/settings.h"
#include "tembrakey/doctor/token_parts.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

enum class Kind { asymmetric, hash, symmetric };

struct Capability {
    Kind kind;
    ULONG bits;
    const char *name;
};

const Capability CAPABILITIES[] = {
    {Kind::asymmetric, SGD_SM2_1, "SM2 (signature)"},
    {Kind::asymmetric, SGD_SM2_3, "SM2 (encryption)"},
    {Kind::asymmetric, SGD_RSA, "RSA"},
    {Kind::hash, SGD_SM3, "SM3"},
    {Kind::symmetric, SGD_SMS4_ECB, "SM4-ECB"},
    {Kind::symmetric, SGD_SMS4_CBC, "SM4-CBC"},
    {Kind::symmetric, SGD_SM1_ECB, "SM1-ECB"},
    {Kind::symmetric, SGD_SM1_CBC, "SM1-CBC"},
    {Kind::symmetric, SGD_SSF33_ECB, "SSF33-ECB"},
    {Kind::symmetric, SGD_SSF33_CBC, "SSF33-CBC"},
};

// By value, since the record is packed.
ULONG claimed(const DEVINFO &info, Kind kind) {
    switch (kind) {
    case Kind::asymmetric: return info.AlgAsymCap;
    case Kind::hash: return info.AlgHashCap;
    case Kind::symmetric: return info.AlgSymCap;
    }
    return 0;
}

std::string versionText(const VERSION &version) {
    return std::to_string(version.major) + "." + std::to_string(version.minor);
}

std::string capabilityText(const DEVINFO &info, Record::List &list) {
    std::string text;
    for (const Capability &one : CAPABILITIES) {
        if ((claimed(info, one.kind) & one.bits) != one.bits)
            continue;
        text += (text.empty() ? "" : ", ") + std::string(one.name);
        list.push_back(Record().add("name", one.name));
    }
    return text;
}

bool isFilled(const CHAR *field, std::size_t size) {
    return size > 0 && field[size - 1] != '\0';
}

void complainOf(const Token &token, const DEVINFO &info) {
    std::vector<std::string> complaints;
    if (info.SerialNumber[0] == '\0')
        complaints.push_back(tr("it has no serial number, so --device cannot name it"));
    if (isFilled(info.SerialNumber, sizeof info.SerialNumber) ||
        isFilled(info.Label, sizeof info.Label))
        complaints.push_back(tr("a text of it does not end with a NUL"));
    if (info.FreeSpace > info.TotalSpace)
        complaints.push_back(tr("it has more free memory than memory"));
    if ((info.AlgAsymCap & (SGD_SM2_1 | SGD_RSA)) == 0)
        complaints.push_back(tr("it claims neither SM2 nor RSA"));
    token.complain("SKF_GetDevInfo", complaints);
}

// The two algorithms that hosts are told of only with the settings' leave.
void compareWithSettings(const Token &token, const DEVINFO &info) {
    struct {
        bool isThere;
        const char *algorithm, *setting;
    } const rows[] = {{(info.AlgHashCap & SGD_SM3) != 0, "SM3", "HasSM3"},
                      {(info.AlgSymCap & SGD_SMS4_ECB) == SGD_SMS4_ECB, "SM4", "HasSM4"}};
    for (const auto &row : rows) {
        if (row.isThere && !isSwitchedOn(row.setting))
            token.report.warn(
                token.name,
                tr("it has {1}, but hosts that ask are told that it has not", {row.algorithm}),
                tr("set {1} to 1", {row.setting}));
    }
}

} // namespace

void examineInfo(const Token &token, const DEVINFO &info) {
    const std::string serial = fieldText(info.SerialNumber, sizeof info.SerialNumber);
    const std::string label = fieldText(info.Label, sizeof info.Label);
    const std::string maker = fieldText(info.Manufacturer, sizeof info.Manufacturer);
    const std::string firmware = versionText(info.FirmwareVersion);
    Record details;
    details.add("serial", serial)
        .add("label", label)
        .add("manufacturer", maker)
        .add("firmware", firmware)
        .add("totalSpace", static_cast<std::int64_t>(info.TotalSpace))
        .add("freeSpace", static_cast<std::int64_t>(info.FreeSpace));
    token.report.ok(token.name,
                    tr("serial {1}, label {2}, made by {3}, firmware {4}, {5} of {6} bytes free",
                       {serial, label, maker, firmware, std::to_string(info.FreeSpace),
                        std::to_string(info.TotalSpace)}),
                    std::move(details));
    Record::List names;
    const std::string text = capabilityText(info, names);
    if (!names.empty())
        token.report.ok(token.name, tr("says that it has {1}", {text}),
                        Record().add("capabilities", std::move(names)));
    compareWithSettings(token, info);
    complainOf(token, info);
}

} // namespace tembra::tool::doctor
