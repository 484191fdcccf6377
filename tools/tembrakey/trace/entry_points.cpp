#include "tembrakey/trace/entry_points.h"

#include <algorithm>

namespace tembra::trace {

namespace {

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// "(SPI_DEVICE_HANDLE hDevice, const char *pwd)" -> hDevice, pwd
std::vector<std::string_view> argumentNames(std::string_view declaration) {
    std::vector<std::string_view> names;
    if (declaration == "(void)")
        return names;
    for (std::size_t at = 0; at < declaration.size(); ++at) {
        if (declaration[at] != ',' && declaration[at] != ')')
            continue;
        std::size_t begin = at;
        while (begin > 0 && isNameCharacter(declaration[begin - 1]))
            --begin;
        names.push_back(declaration.substr(begin, at - begin));
    }
    return names;
}

std::vector<EntryPoint> readTable() {
    std::vector<EntryPoint> table = {
#define TEMBRA_ENTRY_POINT(result, name, arguments) {#name, argumentNames(#arguments)},
#include "tembra_key_prov_entry_points.h"
    };
    std::sort(table.begin(), table.end(),
              [](const EntryPoint &a, const EntryPoint &b) { return a.name < b.name; });
    return table;
}

// Offset of "name = " as a whole word before `end`, the last one.
std::size_t findArgument(std::string_view message, std::string_view name, std::size_t end) {
    for (std::size_t at = end; at > 0;) {
        at = message.substr(0, at).rfind(name);
        if (at == std::string_view::npos)
            return at;
        const bool isWord = at == 0 || !isNameCharacter(message[at - 1]);
        if (isWord && message.substr(at + name.size(), 3) == " = ")
            return at;
    }
    return std::string_view::npos;
}

// Where the value before the argument at `at` ends: at the last comma, which can be a full-width
// one, since no type has any.
std::size_t endOfValueBefore(std::string_view message, std::size_t at) {
    constexpr std::string_view wide = "\xEF\xBC\x8C";
    const std::string_view before = message.substr(0, at);
    const std::size_t narrow = before.rfind(',');
    const std::size_t full = before.rfind(wide);
    if (narrow == std::string_view::npos)
        return full;
    return full == std::string_view::npos ? narrow : std::max(narrow, full);
}

} // namespace

std::span<const EntryPoint> entryPoints() {
    static const std::vector<EntryPoint> table = readTable();
    return table;
}

const EntryPoint *findEntryPoint(std::string_view name) {
    const auto table = entryPoints();
    const auto found = std::lower_bound(
        table.begin(), table.end(), name,
        [](const EntryPoint &entry, std::string_view wanted) { return entry.name < wanted; });
    return found != table.end() && found->name == name ? &*found : nullptr;
}

std::string_view callOf(std::string_view function) {
    struct Row {
        std::string_view routine, entryPoint;
    };
    static constexpr Row rows[] = {
        {"hasSM3", "DeviceInit"},
        {"hasSM4", "DeviceInit"},
        {"isSupportGDKMSM2Import", "DeviceInit"},
        {"addDevice", "DeviceGetAllDevices"},
        {"createKeyHandle", "DeviceGetAllDevices"},
        {"createEmptyKeyHandle", "DeviceGetAllDevices"},
        {"getAllContainer", "DeviceGetAllDevices"},
        {"getContainer", "DeviceGetAllDevices"},
        {"GetCertificate", "DeviceGetAllDevices"},
        {"VerifySuperPwd", "DeviceVerifyPwd"},
        {"ExternalAuth", "DeviceVerifyPwd"},
        {"cipherUpdate", "DeviceCipherUpdate"},
        {"decodeSm2CipherText", "DevicePrivateKeyDecrypt"},
    };
    for (const Row &row : rows)
        if (row.routine == function)
            return row.entryPoint;
    const EntryPoint *own = findEntryPoint(function);
    return own ? own->name : std::string_view();
}

bool opensCall(std::string_view message) {
    static constexpr std::string_view beginnings[] = {
        "hDevice = ",
        "hDeviceSet = ",
        "hKeypair = ",
        "hKeypair=",
        "hKeypair->m_keytype ",
        "hKeypair->m_algo=",
        "hKeypair->m_keybits",
        "hPublicKey = ",
        "hPublicKey->",
        "SPI_",
        "hasSM3 : ",
        "label : ",
        "DeviceLockDevice ",
        "DeviceUnlockDevice ",
        "hDeviceSet->m_handles[0]=",
    };
    return std::any_of(std::begin(beginnings), std::end(beginnings),
                       [&](std::string_view beginning) { return message.starts_with(beginning); });
}

// From the last argument to the first, so that a label that reads like arguments stays a label.
Arguments readArguments(std::string_view entryPoint, std::string_view message) {
    Arguments found;
    const EntryPoint *entry = findEntryPoint(entryPoint);
    if (entry == nullptr)
        return found;
    std::size_t end = message.size();
    for (auto name = entry->arguments.rbegin(); name != entry->arguments.rend(); ++name) {
        const std::size_t at = findArgument(message, *name, end);
        if (at == std::string_view::npos)
            continue;
        const std::size_t value = at + name->size() + 3;
        found.emplace_back(*name, message.substr(value, end - value));
        end = endOfValueBefore(message, at);
        if (end == std::string_view::npos)
            break;
    }
    std::reverse(found.begin(), found.end());
    return found;
}

} // namespace tembra::trace
