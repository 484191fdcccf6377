// The provider's entry points as a table of function pointers, filled at run time.
#pragma once

#include <string>
#include <vector>

#include "tembra_key_prov.h"
#include "tembrakey/platform/dynamic_library.h"

namespace tembra::tool {

struct Provider {
#define TEMBRA_ENTRY_POINT(result, name, arguments) result(*name) arguments = nullptr;
#include "tembra_key_prov_entry_points.h"
};

// Where the provider's library may be, best first: the given path, or the one in TEMBRA_KEY_PROV,
// or the two places near the tool.
std::vector<std::string> providerCandidates(const std::string &given);

// The library and its entry points; unloaded on destruction.
class ProviderLibrary {
public:
    // Loads the first candidate that is a file. Throws Failure when there is none, when it cannot
    // be loaded, or when entry points are missing, which are then named.
    explicit ProviderLibrary(const std::string &given);

    const Provider &entryPoints() const { return m_provider; }
    const std::string &path() const { return m_path; }

private:
    platform::DynamicLibrary m_library;
    Provider m_provider;
    std::string m_path;
};

} // namespace tembra::tool
