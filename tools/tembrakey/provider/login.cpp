#include "tembrakey/provider/login.h"

#include "tembrakey/cli/failure.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

std::string triesAdvice(int type, int tries) {
    if (tries > 0)
        return tr("tries left: {1}", {std::to_string(tries)});
    return type == TEMBRA_PWD_USER ? tr("the PIN is locked; pin unblock sets a new one")
                                   : tr("the administrator PIN is locked");
}

int triesLeft(const Device &device, int type) {
    int tries = -1;
    const int result = device.session()->DeviceGetPwdRetryNum(device.get(), type, &tries);
    return result == TEMBRA_SUCCESS ? tries : -1;
}

} // namespace

void checkPin(const char *entryPoint, const Device &device, int type, int result) {
    if (type == TEMBRA_PWD_DEVICE_AUTH) {
        check(entryPoint, result,
              {result, result == TEMBRA_WRONG_PIN
                           ? tr("the device-authentication key is wrong")
                           : tr("the device-authentication key has 32 digits or letters")});
        return;
    }
    const bool refused = result == TEMBRA_WRONG_PIN || result == TEMBRA_FAILURE;
    const int tries = refused ? triesLeft(device, type) : -1;
    if (result == TEMBRA_FAILURE && tries == 0) // a locked PIN is a plain failure to the token
        throw Failure(ExitCode::wrongPin,
                      tr("{1} answered {2}: {3}", {entryPoint, "0", triesAdvice(type, 0)}),
                      entryPoint, result);
    check(entryPoint, result,
          tries < 0 ? Advice() : Advice{TEMBRA_WRONG_PIN, triesAdvice(type, tries)});
}

void verifyPin(const Device &device, int type, const SecretText &pin) {
    int tries = -1;
    const int result = device.session()->DeviceVerifyPwd(device.get(), type, pin.c_str(), &tries);
    checkPin("DeviceVerifyPwd", device, type, result);
}

void logIn(const Device &device, const PinSource &pin) {
    if (pin.available())
        verifyPin(device, TEMBRA_PWD_USER, pin.read());
}

void logInIfGiven(const Device &device, const PinSource &pin) {
    if (pin.given())
        verifyPin(device, TEMBRA_PWD_USER, pin.read());
}

} // namespace tembra::tool
