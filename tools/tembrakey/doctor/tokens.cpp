#include "tembrakey/doctor/tokens.h"

#include "tembrakey/cli/failure.h"
#include "tembrakey/doctor/token_parts.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

constexpr ULONG LIST_CAPACITY = 1024; // the provider's
constexpr std::size_t MOST_TOKENS = 16;

bool examineToken(const SkfFunctions &skf, Report &report, std::string name) {
    Token token{skf, report, name, nullptr};
    ULONG result = skf.SKF_ConnectDev(name.data(), &token.device);
    if (result != SAR_OK || token.device == nullptr) {
        token.refuse("SKF_ConnectDev", result);
        return false;
    }
    Guarded<DEVINFO> info;
    result = skf.SKF_GetDevInfo(token.device, info.get());
    if (info.isOverrun())
        token.complain("SKF_GetDevInfo", {tr("it writes beyond the buffer")});
    if (result != SAR_OK) {
        token.refuse("SKF_GetDevInfo", result);
    } else {
        examineInfo(token, *info.get());
        examineApplication(token);
        examineRandom(token);
        if ((info->AlgHashCap & SGD_SM3) != 0)
            examineSm3(token);
        if ((info->AlgSymCap & SGD_SMS4_ECB) == SGD_SMS4_ECB)
            examineSm4(token);
    }
    skf.SKF_DisConnectDev(token.device);
    return result == SAR_OK;
}

} // namespace

void Token::complain(const std::string &text) const {
    report.fail(name, text,
                tr("tell the token's vendor; hosts may not see everything on this token"));
}

void Token::complain(const char *function, const std::vector<std::string> &complaints) const {
    for (const std::string &text : complaints)
        complain(tr("{1}: {2}", {function, text}));
}

void Token::refuse(const char *function, ULONG result) const {
    report.fail(name, tr("{1} answers {2}", {function, resultText(result)}),
                tr("plug the token in again; close other programs that use it"),
                Record().add("function", function).add("result", resultText(result)));
}

int examineTokens(Report &report, const platform::DynamicLibrary &library) {
    report.begin("tokens", "Tokens");
    const SkfFunctions skf(library);
    const NameList devices = askNames(LIST_CAPACITY, [&](LPSTR buffer, ULONG *length) {
        return skf.SKF_EnumDev(1, buffer, length);
    });
    const Token all{skf, report, tr("all"), nullptr};
    all.complain("SKF_EnumDev", devices.complaints);
    if (devices.result != SAR_OK)
        all.refuse("SKF_EnumDev", devices.result);
    else if (devices.names.empty())
        report.warn(tr("all"), tr("no token is connected"),
                    tr("plug one in; the development kit makes one with token create"));
    if (devices.names.size() > MOST_TOKENS)
        report.warn(tr("all"),
                    tr("{1} tokens are connected, and hosts see 16",
                       {std::to_string(devices.names.size())}),
                    tr("unplug those that are not needed"));
    int usable = 0;
    for (const std::string &name : devices.names)
        usable += examineToken(skf, report, name) ? 1 : 0;
    return usable;
}

void examineProviderRun(Report &report, const std::string &given, int tokens) {
    report.begin("provider", "Provider at work");
    try {
        const Session session(given);
        const DeviceSet set = allDevices(session);
        const int count = session->DeviceGetDeviceCount(set.get());
        const std::string listed = tr("starts and lists {1} tokens", {std::to_string(count)});
        if (count == tokens)
            report.ok(tr("provider"), listed, Record().add("devices", count));
        else
            report.fail(tr("provider"), listed + tr(", where {1} answer", {std::to_string(tokens)}),
                        tr("its trace log has the token's own answers (tembrakey trace --errors)"),
                        Record().add("devices", count));
    } catch (const Failure &failure) {
        report.fail(tr("provider"), failure.what(),
                    tr("its trace log has the token's own answers (tembrakey trace --errors)"));
    }
}

} // namespace tembra::tool::doctor
