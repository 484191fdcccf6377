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
    {"HasSM3", "hosts that ask are told that tokens have no SM3",
     "hosts that ask are told that tokens have SM3"},
    {"HasSM4", "hosts that ask are told that tokens have no SM4",
     "hosts that ask are told that tokens have SM4"},
    {"SupportGDKMSM2Import", "plain SM2 key pairs are enveloped in the 32-byte form",
     "plain SM2 key pairs are enveloped in the 48-byte form"},
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

// number is what holds, meaning what it means.
void report(Report &out, const char *name, const Value &value, std::uint32_t number,
            const std::string &meaning) {
    const std::string shown = std::to_string(number);
    Record details;
    details.add("value", static_cast<std::int64_t>(number))
        .add("origin", value.isNumber ? platform::settingsPlace() : std::string("default"));
    if (value.isSet && !value.isNumber)
        out.warn(name, tr("is no REG_DWORD, so the default {1} holds: {2}", {shown, meaning}),
                 tr("write it as a REG_DWORD, in a file as \"{1}\"=dword:00000001", {name}),
                 std::move(details));
    else if (!value.isSet)
        out.ok(name, tr("not set, so {1}: {2}", {shown, meaning}), std::move(details));
    else
        out.ok(name, tr("{1}: {2}", {shown, meaning}), std::move(details));
}

void examineLength(Report &out) {
    const char *const name = "MaxOperationLen";
    const Value value = query(name);
    const bool isUsable = value.isNumber && value.number > 0 && value.number <= LONGEST_LENGTH;
    const std::uint32_t length = isUsable ? (value.number + 15) / 16 * 16 : DEFAULT_LENGTH;
    const std::string meaning = tr("most bytes that one token call of a hash or cipher is fed");
    if (value.isNumber && !isUsable)
        out.warn(name, tr("{1} is out of range", {std::to_string(value.number)}),
                 tr("give a number from 16 to 2147483632; the usual one is 1024"),
                 Record().add("value", static_cast<std::int64_t>(value.number)));
    else
        report(out, name, value, length, meaning);
}

} // namespace

bool isSwitchedOn(const char *setting) {
    return query(setting).number != 0;
}

void examineSettings(Report &out) {
    out.begin("settings", "Settings");
    const std::string place = platform::settingsPlace();
    if (platform::settingsPlaceExists())
        out.ok(tr("origin"), place, Record().add("path", place));
    else
        out.warn(tr("origin"), tr("{1} does not exist, so all defaults hold", {place}),
                 tr("import the settings that come with the provider, and change what you need"),
                 Record().add("path", place));
    for (const Flag &flag : FLAGS) {
        const Value value = query(flag.name);
        report(out, flag.name, value, value.number, tr(value.number != 0 ? flag.on : flag.off));
    }
    examineLength(out);
}

} // namespace tembra::tool::doctor
