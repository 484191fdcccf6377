// Applications: listing, opening, logging out.
#include "entry.h"
#include "handles.h"

#include <algorithm>
#include <memory>

using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::door::Call;

namespace {

std::vector<std::string> namesOf(const model::Image &image) {
    std::vector<std::string> names;
    for (const auto &application : image.applications)
        names.push_back(application.name);
    return names;
}

std::shared_ptr<OpenApplication> openApplication(std::shared_ptr<OpenDevice> on,
                                                 std::string_view name) {
    const auto image = imageOf(*on);
    const auto found = std::find_if(image->applications.begin(), image->applications.end(),
                                    [&](const auto &candidate) { return candidate.name == name; });
    require(found != image->applications.end(), SAR_APPLICATION_NOT_EXISTS);
    auto opened = std::make_shared<OpenApplication>();
    opened->id = found->id;
    opened->session = found->id + "/" + std::to_string(on->insertion);
    opened->login = on->token->logins().enter(opened->session);
    opened->device = std::move(on);
    return opened;
}

} // namespace

ULONG SKF_EnumApplication(DEVHANDLE hDev, LPSTR szAppName, ULONG *pulSize) {
    Call call("SKF_EnumApplication");
    call.handle("hDev", hDev).handle("szAppName", szAppName);
    return answer(call, [&] {
        giveNames(namesOf(*imageOf(*device(hDev))), szAppName, pulSize);
        call.outputs().number("pulSize", *pulSize);
    });
}

ULONG SKF_OpenApplication(DEVHANDLE hDev, LPSTR szAppName, HAPPLICATION *phApplication) {
    Call call("SKF_OpenApplication");
    call.handle("hDev", hDev).text("szAppName", szAppName);
    return answer(call, [&] {
        auto on = device(hDev);
        requirePointer(phApplication);
        *phApplication =
            handles().applications.add(openApplication(std::move(on), textArgument(szAppName)));
        call.outputs().handle("phApplication", *phApplication);
    });
}

ULONG SKF_CloseApplication(HAPPLICATION hApplication) {
    Call call("SKF_CloseApplication");
    call.handle("hApplication", hApplication);
    return answer(call, [&] {
        const auto taken = handles().applications.take(hApplication);
        require(taken != nullptr, SAR_INVALIDHANDLEERR);
        taken->open = false;
        taken->token().logins().leave(taken->session);
    });
}

ULONG SKF_ClearSecureState(HAPPLICATION hApplication) {
    Call call("SKF_ClearSecureState");
    call.handle("hApplication", hApplication);
    return answer(call, [&] {
        const auto opened = application(hApplication);
        (void)locate(*imageOf(*opened->device), *opened);
        opened->login->clear();
    });
}
