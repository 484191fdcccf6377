// The functions of a token library, which the doctor calls directly and not through the provider.
#pragma once

#include "platform/skf.h"
#include "tembrakey/platform/dynamic_library.h"

namespace tembra::tool::doctor {

struct SkfFunctions {
#define TEMBRA_IMPORT(result, name, parameters) decltype(&::name) name = nullptr;
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT

    // The library must have all of them.
    explicit SkfFunctions(const platform::DynamicLibrary &library) {
#define TEMBRA_IMPORT(result, name, parameters)                                                    \
    name = reinterpret_cast<decltype(name)>(library.symbol(#name));
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
    }
};

} // namespace tembra::tool::doctor
