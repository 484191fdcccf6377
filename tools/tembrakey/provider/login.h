// Work with PINs. All throw Failure, with the tries left. type is TEMBRA_PWD_.
#pragma once

#include "tembrakey/io/secret_text.h"
#include "tembrakey/provider/session.h"

namespace tembra::tool {

void verifyPin(const Device &device, int type, const SecretText &pin);
void changePin(const Device &device, int type, const SecretText &pin, const SecretText &newPin);
void unblockUserPin(const Device &device, const SecretText &adminPin, const SecretText &newPin);

} // namespace tembra::tool
