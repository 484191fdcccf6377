// The provider and the two libraries below it.
#pragma once

#include <string>

#include "tembrakey/doctor/checkpoint.h"
#include "tembrakey/doctor/report.h"
#include "tembrakey/platform/dynamic_library.h"

namespace tembra::tool::doctor {

struct Libraries {
    platform::DynamicLibrary provider;
    platform::DynamicLibrary token;
    platform::DynamicLibrary host;
    bool providerWorks = false; // this one and the host library are loaded, with all functions
    bool tokenWorks = false;    // loaded, with all its functions
};

// Loads the libraries and reports where they came from and what they lack: first the provider,
// which loads the others, or, if apart, only the others.
void examineLibraries(Report &report, const Checkpoint &reached, bool apart, Libraries &libraries);

} // namespace tembra::tool::doctor
