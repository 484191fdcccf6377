#include "tembrakey/doctor/settings.h"

#include <cstdint>

#include "platform/registry.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

// The meanings are English.
struct Flag {
    const char *name;
    const char *off;
    const char *on;
};

const Flag FLAGS[] = {
    {"HasSM3", N_("the provider reports that tokens have no SM3"),
     N_("the provider reports that tokens have SM3")},
    {"HasSM4", N_("the provider reports that tokens have no SM4"),
     N_("the provider reports that tokens have SM4")},
    {"SupportGDKMSM2Import", N_("plain SM2 key pairs are enveloped in the 32-byte form"),
     N_("plain SM2 key pairs are enveloped in the 48-byte form")},
};

constexpr std::uint32_t DEFAULT_LENGTH = 1024;
constexpr std::uint32_t LONGEST_LENGTH = 0x7FFFFFF0;

struct Value {
    bool isSet = false;
    bool isNumber = false;
    std::uint32_t number = 0;
};

Value query(const char *name) {
    const auto answer =
        ::tembra::platform::queryRegistryValue("Software\\ORVEL\\PKI\\Devices\\TembraKey", name);
    Value value;
    value.isSet = answer.openResult == 0 && (answer.queryResult == 0 || answer.queryResult == 234);
    value.isNumber = answer.openResult == 0 && answer.queryResult == 0 &&
                     answer.type == ::tembra::platform::REGISTRY_TYPE_DWORD;
    value.number = value.isNumber ? answer.data : 0;
    return value;
}

// number is the value in effect, meaning its effect.
void reportValue(Report &report, const char *name, const Value &value, std::uint32_t number,
                 const std::string &meaning) {
    const std::string shown = std::to_string(number);
    const Json details = {{"value", number},
                          {"origin", value.isNumber ? platform::settingsPlace() : "default"}};
    if (value.isSet && !value.isNumber)
        report.warn(Section::settings, name,
                    tr("is not a REG_DWORD, so the default {1} is used: {2}", {shown, meaning}),
                    tr("write it as a REG_DWORD, in a file as \"{1}\"=dword:00000001", {name}),
                    details);
    else
        report.ok(Section::settings, name,
                  value.isSet ? tr("{1}: {2}", {shown, meaning})
                              : tr("not set, so {1}: {2}", {shown, meaning}),
                  details);
}

void examineLength(Report &report) {
    const char *const name = "MaxOperationLen";
    const Value value = query(name);
    const bool isUsable = value.isNumber && value.number > 0 && value.number <= LONGEST_LENGTH;
    const std::uint32_t length = isUsable ? (value.number + 15) / 16 * 16 : DEFAULT_LENGTH;
    if (value.isNumber && !isUsable)
        report.warn(Section::settings, name,
                    tr("{1} is out of range", {std::to_string(value.number)}),
                    tr("give a number from 16 to 2147483632; the usual one is 1024"),
                    {{"value", value.number}});
    else
        reportValue(report, name, value, length,
                    tr("most bytes in one token call of a hash or cipher"));
}

} // namespace

void examineSettings(Report &report) {
    const std::string place = platform::settingsPlace();
    if (platform::settingsPlaceExists())
        report.ok(Section::settings, tr("origin"), place, {{"path", place}});
    else
        report.warn(Section::settings, tr("origin"),
                    tr("{1} does not exist, so all defaults are used", {place}),
                    tr("import the settings that come with the provider, and change what you need"),
                    {{"path", place}});
    for (const Flag &flag : FLAGS) {
        const Value value = query(flag.name);
        reportValue(report, flag.name, value, value.number,
                    tr(value.number != 0 ? flag.on : flag.off));
    }
    examineLength(report);
}

} // namespace tembra::tool::doctor
