#include "tembrakey/doctor/tokens.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "platform/skf.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

constexpr std::size_t LIST_CAPACITY = 1024; // the provider's
constexpr std::size_t MOST_TOKENS = 16;

// One token, or the library as a whole, under examination.
struct Token {
    Report &report;
    const Checkpoint &reached;
    const platform::DynamicLibrary &library;
    std::string name;

    // Calls a function of the library; false when it failed, which is then reported.
    template <typename Function, typename... Arguments>
    bool call(const char *function, Arguments... arguments) const {
        reached(library.path(), function);
        const auto address = reinterpret_cast<Function *>(library.symbol(function));
        const ULONG result = address(arguments...);
        if (result == SAR_OK)
            return true;
        char code[16];
        std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(result));
        report.fail(Section::tokens, name, tr("{1} returned {2}", {function, code}),
                    tr("plug the token in again; close other programs that use it"),
                    {{"function", function}, {"result", code}});
        return false;
    }
};

// Calls SKF_name for a subject.
#define TEMBRA_CALL(subject, name, ...)                                                            \
    (subject).call<decltype(SKF_##name)>("SKF_" #name, __VA_ARGS__)

// The names in a list of NUL-terminated ones; what the token wrote need not be well formed.
std::vector<std::string> namesIn(std::string_view list) {
    std::vector<std::string> names;
    while (!list.empty() && list[0] != '\0') {
        names.emplace_back(list.substr(0, list.find('\0')));
        list.remove_prefix(std::min(names.back().size() + 1, list.size()));
    }
    return names;
}

std::string fieldText(const CHAR *field, std::size_t size) {
    return {field, std::find(field, field + size, '\0')};
}

void examinePin(const Token &token, HAPPLICATION application, ULONG type) {
    const bool isUser = type == USER_TYPE;
    ULONG most = 0;
    ULONG left = 0;
    BOOL isDefault = 0;
    if (!TEMBRA_CALL(token, GetPINInfo, application, type, &most, &left, &isDefault))
        return;
    const std::string text =
        tr("{1}: {2} of {3} tries left", {tr(isUser ? "user PIN" : N_("administrator PIN")),
                                          std::to_string(left), std::to_string(most)});
    const Json details = {
        {"pin", isUser ? "user PIN" : "administrator PIN"}, {"triesLeft", left}, {"tries", most}};
    if (left == 0)
        token.report.warn(
            Section::tokens, token.name, text + tr("; it is locked"),
            tr(isUser ? "unblock it with pin unblock" : N_("only the token's vendor can help")),
            details);
    else if (isDefault != 0)
        token.report.warn(Section::tokens, token.name, text + tr("; it is still the vendor's"),
                          tr("change it with pin change"), details);
    else
        token.report.ok(Section::tokens, token.name, text, details);
}

void examineApplication(const Token &token, DEVHANDLE device) {
    std::string list(LIST_CAPACITY * 2, '\0'); // some libraries write more than they were allowed
    ULONG length = LIST_CAPACITY;
    if (!TEMBRA_CALL(token, EnumApplication, device, list.data(), &length))
        return;
    std::vector<std::string> names = namesIn(list);
    if (names.empty()) {
        token.report.warn(Section::tokens, token.name,
                          tr("it has no application, so it has no PIN and no keys"),
                          tr("format it with its vendor's program"));
        return;
    }
    if (names.size() > 1)
        token.report.warn(Section::tokens, token.name,
                          tr("{1} applications, of which hosts see the first, {2}",
                             {std::to_string(names.size()), names.front()}),
                          tr("keys in the others are not for these hosts"));
    HAPPLICATION application = nullptr;
    if (!TEMBRA_CALL(token, OpenApplication, device, names.front().data(), &application))
        return;
    examinePin(token, application, USER_TYPE);
    examinePin(token, application, ADMIN_TYPE);
    TEMBRA_CALL(token, CloseApplication, application);
}

bool examineToken(const Token &token) {
    DEVHANDLE device = nullptr;
    std::string name = token.name;
    if (!TEMBRA_CALL(token, ConnectDev, name.data(), &device))
        return false;
    struct {
        DEVINFO info;
        char spare[4096]; // for libraries with a longer record
    } answer = {};
    const bool isUsable = TEMBRA_CALL(token, GetDevInfo, device, &answer.info);
    if (isUsable) {
        const DEVINFO &info = answer.info;
        const std::string serial = fieldText(info.SerialNumber, sizeof info.SerialNumber);
        const std::string label = fieldText(info.Label, sizeof info.Label);
        const std::string maker = fieldText(info.Manufacturer, sizeof info.Manufacturer);
        token.report.ok(Section::tokens, token.name,
                        tr("serial {1}, label {2}, made by {3}", {serial, label, maker}),
                        {{"serial", serial}, {"label", label}, {"manufacturer", maker}});
        examineApplication(token, device);
    }
    TEMBRA_CALL(token, DisConnectDev, device);
    return isUsable;
}

} // namespace

int examineTokens(Report &report, const Checkpoint &reached,
                  const platform::DynamicLibrary &library) {
    const Token all{report, reached, library, tr("all")};
    std::string list(LIST_CAPACITY * 2, '\0');
    ULONG length = LIST_CAPACITY;
    if (!TEMBRA_CALL(all, EnumDev, 1, list.data(), &length))
        return 0;
    const std::vector<std::string> names = namesIn(list);
    if (names.empty())
        report.warn(Section::tokens, all.name, tr("no token is connected"),
                    tr("plug one in; the development kit makes one with token create"));
    if (names.size() > MOST_TOKENS)
        report.warn(
            Section::tokens, all.name,
            tr("{1} tokens are connected, and hosts see 16", {std::to_string(names.size())}),
            tr("unplug those that are not needed"));
    return static_cast<int>(std::ranges::count_if(names, [&](const std::string &name) {
        return examineToken({report, reached, library, name});
    }));
}

} // namespace tembra::tool::doctor
