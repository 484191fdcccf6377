// The provider and the two libraries below it.
#pragma once

#include <string>

#include "tembrakey/doctor/report.h"
#include "tembrakey/platform/dynamic_library.h"

namespace tembra::tool::doctor {

struct Libraries {
    platform::DynamicLibrary provider;
    platform::DynamicLibrary token;
    platform::DynamicLibrary host;
    bool providerWorks = false; // loaded, with all its entry points
    bool tokenWorks = false;    // loaded, with all its functions
};

// Loads all three and reports where they came from and what they lack. given is --provider.
void examineLibraries(Report &report, const std::string &given, Libraries &libraries);

} // namespace tembra::tool::doctor
