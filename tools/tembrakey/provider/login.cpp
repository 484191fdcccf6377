#include "tembrakey/provider/login.h"

#include "tembrakey/io/failure.h"
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

// Throws the Failure for the result of an entry point that took a PIN of this type.
void checkPin(const char *entryPoint, const Device &device, int type, int result) {
    const bool isRefused = result == TEMBRA_WRONG_PIN || result == TEMBRA_FAILURE;
    const int tries = isRefused ? triesLeft(device, type) : -1;
    if (result == TEMBRA_FAILURE && tries == 0) // a locked PIN is a plain failure to the token
        throw Failure(ExitCode::wrongPin,
                      tr("{1} returned {2}: {3}", {entryPoint, "0", triesAdvice(type, 0)}),
                      entryPoint, result);
    check(entryPoint, result,
          tries < 0 ? Advice{TEMBRA_FAILURE, tr("the token has no application: create one")}
                    : Advice{TEMBRA_WRONG_PIN, triesAdvice(type, tries)});
}

} // namespace

void verifyPin(const Device &device, int type, const SecretText &pin) {
    const WithoutSecrets guard;
    int tries = -1;
    const int result = device.session()->DeviceVerifyPwd(device.get(), type, pin.c_str(), &tries);
    if (type != TEMBRA_PWD_DEVICE_AUTH)
        return checkPin("DeviceVerifyPwd", device, type, result);
    check("DeviceVerifyPwd", result,
          {result, result == TEMBRA_WRONG_PIN
                       ? tr("the device-authentication key is wrong")
                       : tr("the device-authentication key has 32 digits or letters")});
}

void changePin(const Device &device, int type, const SecretText &pin, const SecretText &newPin) {
    const WithoutSecrets guard;
    int tries = -1;
    const int result =
        device.session()->DeviceChangePwd(device.get(), type, pin.c_str(), newPin.c_str(), &tries);
    checkPin("DeviceChangePwd", device, type, result);
}

void unblockUserPin(const Device &device, const SecretText &adminPin, const SecretText &newPin) {
    const WithoutSecrets guard;
    int tries = -1;
    const int result = device.session()->DeviceUnlockPwd(device.get(), TEMBRA_PWD_USER,
                                                         adminPin.c_str(), newPin.c_str(), &tries);
    // A wrong administrator PIN is a plain failure to this entry point; only the tries that are
    // left distinguish it from other failures.
    if (result == TEMBRA_FAILURE && tries > 0)
        throw Failure(ExitCode::wrongPin,
                      tr("{1} returned {2}: {3}", {"DeviceUnlockPwd", "0",
                                                   tr("the administrator PIN is wrong, tries "
                                                      "left: {1}",
                                                      {std::to_string(tries)})}),
                      "DeviceUnlockPwd", result);
    checkPin("DeviceUnlockPwd", device, TEMBRA_PWD_ADMIN, result);
}

} // namespace tembra::tool
