// Logging in before the work.
#pragma once

#include "tembrakey/io/pin_input.h"
#include "tembrakey/provider/session.h"

namespace tembra::tool {

// Throws the Failure for the result of an entry point that took a PIN of this type (TEMBRA_PWD_),
// with the tries that are left.
void checkPin(const char *entryPoint, const Device &device, int type, int result);

// DeviceVerifyPwd; type is TEMBRA_PWD_. Throws Failure.
void verifyPin(const Device &device, int type, const SecretText &pin);

// For work that needs the private key: logs in with the user PIN when an option or a terminal gives
// it. Without either the work is tried as it is, and the token's refusal tells the user.
void logIn(const Device &device, const PinSource &pin);

// For work that may not need it: logs in only when an option gives the PIN.
void logInIfGiven(const Device &device, const PinSource &pin);

} // namespace tembra::tool
