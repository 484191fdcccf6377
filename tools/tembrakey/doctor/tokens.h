// The tokens that are connected: what each can do, and whether its answers are sound.
#pragma once

#include "tembrakey/doctor/report.h"
#include "tembrakey/platform/dynamic_library.h"

namespace tembra::tool::doctor {

// library has all SKF functions. Logs in nowhere and changes nothing. Returns how many tokens the
// provider should see.
int examineTokens(Report &report, const platform::DynamicLibrary &library);

// Whether the provider starts, and lists that many tokens. given is --provider.
void examineProviderRun(Report &report, const std::string &given, int tokens);

} // namespace tembra::tool::doctor
