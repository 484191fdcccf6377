// The tokens that are connected, and the provider's work with them.
#pragma once

#include <string>

#include "tembrakey/doctor/checkpoint.h"
#include "tembrakey/doctor/report.h"
#include "tembrakey/platform/dynamic_library.h"

namespace tembra::tool::doctor {

// Which tokens can be reached, and the state of their PINs. library has all SKF functions. Does not
// log in and changes nothing. Returns the number of tokens that can be used.
int examineTokens(Report &report, const Checkpoint &reached,
                  const platform::DynamicLibrary &library);

// Whether the provider starts and lists that many tokens, and whether their certificates are valid.
void examineProvider(Report &report, const Checkpoint &reached, int tokens);

} // namespace tembra::tool::doctor
