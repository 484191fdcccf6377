// PINs: verifying, changing, unblocking, querying.
#include "token/model/pins.h"

#include "entry.h"
#include "handles.h"

#include <atomic>

using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

template <typename Application>
auto &pinOf(Application &application, ULONG type) {
    require(type == USER_TYPE || type == ADMIN_TYPE, SAR_USER_TYPE_INVALID);
    return type == USER_TYPE ? application.userPin : application.adminPin;
}

// A wrong PIN also ends a previous login.
void logIn(const OpenApplication &opened, ULONG type, std::string_view pin, ULONG *triesLeft) {
    model::Change change(opened.token());
    model::Pin &stored = pinOf(locate(change.image(), opened), type);
    std::atomic<bool> &login = type == USER_TYPE ? opened.login->user : opened.login->admin;
    try {
        model::checkPin(change, stored, pin, triesLeft);
    } catch (...) {
        login = false;
        throw;
    }
    login = true;
}

void changePin(const OpenApplication &opened, ULONG type, std::string_view oldPin,
               std::string_view newPin, ULONG *triesLeft) {
    model::Change change(opened.token());
    model::Pin &stored = pinOf(locate(change.image(), opened), type);
    model::requirePinLength(newPin);
    model::checkPin(change, stored, oldPin, triesLeft);
    model::replacePin(stored, newPin);
    change.commit();
}

void unblockPin(const OpenApplication &opened, std::string_view adminPin,
                std::string_view newUserPin, ULONG *triesLeft) {
    model::Change change(opened.token());
    model::Application &stored = locate(change.image(), opened);
    model::requirePinLength(newUserPin);
    model::checkPin(change, stored.adminPin, adminPin, triesLeft);
    model::replacePin(stored.userPin, newUserPin);
    change.commit();
}

void set(auto *out, auto value) {
    if (out != nullptr)
        *out = value;
}

} // namespace

ULONG SKF_VerifyPIN(HAPPLICATION hApplication, ULONG ulPINType, LPSTR szPIN, ULONG *pulRetryCount) {
    Call call(__func__);
    call.handle("hApplication", hApplication).number("ulPINType", ulPINType).secret("szPIN", szPIN);
    return answer(call, [&] {
        logIn(*application(hApplication), ulPINType, textArgument(szPIN), pulRetryCount);
    });
}

ULONG SKF_ChangePIN(HAPPLICATION hApplication, ULONG ulPINType, LPSTR szOldPin, LPSTR szNewPin,
                    ULONG *pulRetryCount) {
    Call call(__func__);
    call.handle("hApplication", hApplication).number("ulPINType", ulPINType);
    call.secret("szOldPin", szOldPin).secret("szNewPin", szNewPin);
    return answer(call, [&] {
        changePin(*application(hApplication), ulPINType, textArgument(szOldPin),
                  textArgument(szNewPin), pulRetryCount);
    });
}

ULONG SKF_UnblockPIN(HAPPLICATION hApplication, LPSTR szAdminPIN, LPSTR szNewUserPIN,
                     ULONG *pulRetryCount) {
    Call call(__func__);
    call.handle("hApplication", hApplication);
    call.secret("szAdminPIN", szAdminPIN).secret("szNewUserPIN", szNewUserPIN);
    return answer(call, [&] {
        unblockPin(*application(hApplication), textArgument(szAdminPIN), textArgument(szNewUserPIN),
                   pulRetryCount);
    });
}

ULONG SKF_GetPINInfo(HAPPLICATION hApplication, ULONG ulPINType, ULONG *pulMaxRetryCount,
                     ULONG *pulRemainRetryCount, BOOL *pbDefaultPin) {
    Call call(__func__);
    call.handle("hApplication", hApplication).number("ulPINType", ulPINType);
    return answer(call, [&] {
        const auto opened = application(hApplication);
        const auto image = imageOf(*opened->device);
        const model::Pin &pin = pinOf(locate(*image, *opened), ulPINType);
        set(pulMaxRetryCount, pin.maxTries);
        set(pulRemainRetryCount, pin.triesLeft);
        set(pbDefaultPin, pin.isDefault);
        call.outputs().number("pulMaxRetryCount", pin.maxTries);
        call.number("pulRemainRetryCount", pin.triesLeft).number("pbDefaultPin", pin.isDefault);
    });
}
