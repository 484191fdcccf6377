// Applications: listing, opening, logging out.
#include "entry.h"
#include "handles.h"

#include <memory>

using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

std::shared_ptr<OpenApplication> openApplication(std::shared_ptr<OpenDevice> device,
                                                 std::string_view name) {
    const auto image = imageOf(*device);
    const model::Application *found = model::findNamed(image->applications, name);
    require(found != nullptr, SAR_APPLICATION_NOT_EXISTS);
    auto opened = std::make_shared<OpenApplication>();
    opened->id = found->id;
    opened->session = found->id + "/" + std::to_string(device->insertion);
    opened->login = device->token->logins().enter(opened->session);
    opened->device = std::move(device);
    return opened;
}

} // namespace

ULONG SKF_EnumApplication(DEVHANDLE hDev, LPSTR szAppName, ULONG *pulSize) {
    Call call(__func__);
    call.handle("hDev", hDev).handle("szAppName", szAppName);
    return answer(call, [&] {
        outputNames(model::namesOf(imageOf(*device(hDev))->applications), szAppName, pulSize);
        call.outputs().number("pulSize", *pulSize);
    });
}

ULONG SKF_OpenApplication(DEVHANDLE hDev, LPSTR szAppName, HAPPLICATION *phApplication) {
    Call call(__func__);
    call.handle("hDev", hDev).text("szAppName", szAppName);
    return answer(call, [&] {
        auto opened = device(hDev);
        requirePointer(phApplication);
        *phApplication =
            handles().applications.add(openApplication(std::move(opened), textArgument(szAppName)));
        call.outputs().handle("phApplication", *phApplication);
    });
}

ULONG SKF_CloseApplication(HAPPLICATION hApplication) {
    Call call(__func__);
    call.handle("hApplication", hApplication);
    return answer(call, [&] {
        const auto taken = handles().applications.take(hApplication);
        require(taken != nullptr, SAR_INVALIDHANDLEERR);
        taken->open = false;
        taken->token().logins().leave(taken->session);
    });
}

ULONG SKF_ClearSecureState(HAPPLICATION hApplication) {
    Call call(__func__);
    call.handle("hApplication", hApplication);
    return answer(call, [&] {
        const auto opened = application(hApplication);
        (void)locate(*imageOf(*opened->device), *opened);
        opened->login->clear();
    });
}
