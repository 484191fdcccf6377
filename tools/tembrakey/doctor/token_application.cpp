// A token's application: its PINs and containers.
#include "tembrakey/doctor/token_parts.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

constexpr ULONG APPLICATION_CAPACITY = 1024; // the provider's
constexpr ULONG CONTAINER_CAPACITY = 4096;
constexpr std::size_t MOST_CONTAINERS = 32;

void examinePin(const Token &token, HAPPLICATION application, ULONG type, const char *what) {
    ULONG most = 0;
    ULONG left = 0;
    BOOL isDefault = 0;
    const ULONG result = token.skf.SKF_GetPINInfo(application, type, &most, &left, &isDefault);
    if (result != SAR_OK) {
        token.refuse("SKF_GetPINInfo", result);
        return;
    }
    const std::string text =
        tr("{1}: {2} of {3} tries left", {tr(what), std::to_string(left), std::to_string(most)});
    Record details;
    details.add("pin", what)
        .add("triesLeft", static_cast<std::int64_t>(left))
        .add("tries", static_cast<std::int64_t>(most));
    if (left > most)
        token.complain("SKF_GetPINInfo", {tr("it has more tries left than tries")});
    else if (left == 0)
        token.report.warn(token.name, text + tr("; it is locked"),
                          type == USER_TYPE ? tr("unblock it with pin unblock")
                                            : tr("only the token's vendor can help"),
                          details);
    else if (isDefault != 0)
        token.report.warn(token.name, text + tr("; it is still the vendor's"),
                          tr("change it with pin change"), details);
    else if (left < most)
        token.report.ok(token.name, text + tr(" (wrong ones were entered)"), details);
    else
        token.report.ok(token.name, text, details);
}

} // namespace

void examineContainers(const Token &token, HAPPLICATION application) {
    const NameList list = askNames(CONTAINER_CAPACITY, [&](LPSTR buffer, ULONG *length) {
        return token.skf.SKF_EnumContainer(application, buffer, length);
    });
    token.complain("SKF_EnumContainer", list.complaints);
    if (list.result != SAR_OK) {
        token.refuse("SKF_EnumContainer", list.result);
        return;
    }
    const std::string count = std::to_string(list.names.size());
    if (list.names.size() > MOST_CONTAINERS)
        token.report.warn(token.name, tr("{1} containers, of which hosts see 32", {count}),
                          tr("delete those that are not needed: key delete"));
    else
        token.report.ok(token.name, tr("containers: {1}", {count}));
    for (std::string name : list.names) {
        HCONTAINER container = nullptr;
        ULONG type = CONTAINER_TYPE_EMPTY;
        ULONG result = token.skf.SKF_OpenContainer(application, name.data(), &container);
        if (result != SAR_OK) {
            token.refuse("SKF_OpenContainer", result);
            continue;
        }
        result = token.skf.SKF_GetContainerType(container, &type);
        if (result != SAR_OK)
            token.refuse("SKF_GetContainerType", result);
        else
            examineKeys(token, container, name, type);
        token.skf.SKF_CloseContainer(container);
    }
}

void examineApplication(const Token &token) {
    NameList list = askNames(APPLICATION_CAPACITY, [&](LPSTR buffer, ULONG *length) {
        return token.skf.SKF_EnumApplication(token.device, buffer, length);
    });
    token.complain("SKF_EnumApplication", list.complaints);
    if (list.result != SAR_OK) {
        token.refuse("SKF_EnumApplication", list.result);
        return;
    }
    if (list.names.empty()) {
        token.report.warn(token.name, tr("it has no application: there is no PIN, and no keys"),
                          tr("format it with its vendor's program"));
        return;
    }
    std::string &name = list.names.front();
    if (list.names.size() > 1)
        token.report.warn(token.name,
                          tr("{1} applications, of which hosts see the first, {2}",
                             {std::to_string(list.names.size()), name}),
                          tr("keys in the others are not for these hosts"));
    HAPPLICATION application = nullptr;
    const ULONG result = token.skf.SKF_OpenApplication(token.device, name.data(), &application);
    if (result != SAR_OK) {
        token.refuse("SKF_OpenApplication", result);
        return;
    }
    examinePin(token, application, USER_TYPE, "user PIN");
    examinePin(token, application, ADMIN_TYPE, "administrator PIN");
    examineContainers(token, application);
    token.skf.SKF_CloseApplication(application);
}

} // namespace tembra::tool::doctor
