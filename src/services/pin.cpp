// PINs. The trace shows them in clear at level information; that is part of its contract.
#include "log/trace.h"
#include "platform/skf_arguments.h"
#include "provider/lock.h"
#include "provider/outcome.h"
#include "provider/records.h"
#include "services/device_auth.h"

using namespace tembra;

namespace {

constexpr const char *NOT_FORMATTED = "hDevice->m_isformat == 0";

bool isPinType(int type) {
    return type == TEMBRA_PWD_USER || type == TEMBRA_PWD_ADMIN;
}

ULONG skfPinType(int type) {
    return type == TEMBRA_PWD_USER ? USER_TYPE : ADMIN_TYPE;
}

// The number of tries left as the token writes it: unsigned, of the same width. Tokens need not
// accept a null pointer, so they write to unused where the host passes none.
ULONG *skfCount(int *pretrynum, int &unused) {
    return reinterpret_cast<ULONG *>(pretrynum ? pretrynum : &unused);
}

// wrongPin is the only code that means a wrong PIN in this call. failed is the beginning of the
// line for codes without a result of their own.
int resultOf(ULONG rv, ULONG wrongPin, const char *failed, const char *function) {
    if (rv == wrongPin)
        return TEMBRA_WRONG_PIN;
    if (rv == SAR_PIN_LEN_RANGE)
        return TEMBRA_PIN_LENGTH;
    if (rv == SAR_OK)
        return TEMBRA_SUCCESS;
    TEMBRA_TRACE(TraceLevel::error, function, "%s = 0x%08X", failed, rv);
    return TEMBRA_FAILURE;
}

// Calls the token under the lock. False if the token has no application.
template <typename Call>
bool callToken(const Device *hDevice, ULONG &rv, Call call) {
    const ProviderLock lock;
    if (hDevice->m_isformat == 0)
        return false;
    rv = call(hDevice->m_hApp);
    return true;
}

} // namespace

int DeviceVerifyPwd(SPI_DEVICE_HANDLE hDevice, int type, const char *pwd, int *pretrynum) {
    const call_stack_tracer tracer("DeviceVerifyPwd");
    TRACE_INFO("hDevice = %p, type = %d, pwd = %s, *pretrynum = %d", static_cast<void *>(hDevice),
               type, shown(pwd), shown(pretrynum));
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (!pwd)
        return TEMBRA_BAD_ARGUMENT;
    if (type == TEMBRA_PWD_DEVICE_AUTH)
        return VerifySuperPwd(hDevice, pwd, pretrynum);
    if (!isPinType(type))
        return TEMBRA_BAD_ARGUMENT;
    if (!hDevice->m_hApp)
        return fail("hDevice->m_hApp == 0", __func__);

    int unused = 0;
    ProviderLock lock;
    const ULONG rv = SKF_VerifyPIN(hDevice->m_hApp, skfPinType(type), skfInput(pwd),
                                   skfCount(pretrynum, unused));
    lock.leave();
    return resultOf(rv, SAR_PIN_INCORRECT, "SKF_VerifyPIN fail, error", __func__);
}

int DeviceChangePwd(SPI_DEVICE_HANDLE hDevice, int type, const char *oldpwd, const char *newpwd,
                    int *pretrynum) {
    const call_stack_tracer tracer("DeviceChangePwd");
    TRACE_INFO("hDevice = %p, int type = %d, const char *oldpwd = %s, const char *newpwd = %s, "
               "int *pretrynum = %d",
               static_cast<void *>(hDevice), type, shown(oldpwd), shown(newpwd), shown(pretrynum));
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (!isPinType(type) || !oldpwd || !newpwd)
        return TEMBRA_BAD_ARGUMENT;
    int unused = 0;
    ULONG rv = SAR_OK;
    if (!callToken(hDevice, rv, [&](HAPPLICATION hApp) {
            return SKF_ChangePIN(hApp, skfPinType(type), skfInput(oldpwd), skfInput(newpwd),
                                 skfCount(pretrynum, unused));
        }))
        return fail(NOT_FORMATTED, __func__);
    return resultOf(rv, SAR_PIN_INCORRECT, "SKF_ChangePIN fail, error", __func__);
}

int DeviceUnlockPwd(SPI_DEVICE_HANDLE hDevice, int type, const char *sopwd, const char *newpwd,
                    int *pretrynum) {
    const call_stack_tracer tracer("DeviceUnlockPwd");
    TRACE_INFO("hDevice = %p, int type = %d, const char *sopwd = %s, const char *newpwd = %s, "
               "int *pretrynum = %p",
               static_cast<void *>(hDevice), type, shown(sopwd), shown(newpwd),
               static_cast<void *>(pretrynum));
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (type != TEMBRA_PWD_USER || !sopwd || !newpwd)
        return TEMBRA_BAD_ARGUMENT;
    int unused = 0;
    ULONG rv = SAR_OK;
    if (!callToken(hDevice, rv, [&](HAPPLICATION hApp) {
            return SKF_UnblockPIN(hApp, skfInput(sopwd), skfInput(newpwd),
                                  skfCount(pretrynum, unused));
        }))
        return fail(NOT_FORMATTED, __func__);
    // Unlike above, it is the locked PIN that counts as wrong here.
    return resultOf(rv, SAR_PIN_LOCKED, "rv != SAR_OK, rv", __func__);
}

int DeviceGetPwdRetryNum(SPI_DEVICE_HANDLE hDevice, int type, int *pretrynum) {
    const call_stack_tracer tracer("DeviceGetPwdRetryNum");
    // People search traces for this line, full-width comma included.
    TRACE_INFO("hDevice = %p, int type = %d\xEF\xBC\x8C int *pretrynum = %d",
               static_cast<void *>(hDevice), type, shown(pretrynum));
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (!isPinType(type))
        return TEMBRA_BAD_ARGUMENT;
    ULONG maximum = 0;
    ULONG remaining = 0;
    BOOL isDefault = 0;
    ULONG rv = SAR_OK;
    if (!callToken(hDevice, rv, [&](HAPPLICATION hApp) {
            return SKF_GetPINInfo(hApp, skfPinType(type), &maximum, &remaining, &isDefault);
        }))
        return fail(NOT_FORMATTED, __func__);
    if (rv != SAR_OK) {
        TRACE_ERROR("SKF_GetPINInfo fail, error : 0x%08X", rv);
        return TEMBRA_FAILURE;
    }
    if (pretrynum)
        *pretrynum = static_cast<int>(remaining);
    return TEMBRA_SUCCESS;
}
