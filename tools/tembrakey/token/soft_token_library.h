// The development kit's software token, by its control functions; apart from the provider, which
// the commands about software tokens never load.
#pragma once

#include <string>
#include <vector>

#include "tembra_soft_token.h"
#include "tembrakey/platform/dynamic_library.h"

namespace tembra::tool {

class SoftTokenLibrary {
public:
    // Loads QXSKFAPI from beside the tool. Throws Failure when it is not there or is another
    // token's library.
    SoftTokenLibrary();

    // Makes a token; returns its device name. Throw Failure, as the other functions do.
    std::string create(const TembraSoftTokenOptions &options) const;
    void addApplication(const std::string &token,
                        const TembraSoftTokenApplication &application) const;
    void remove(const std::string &token) const;
    std::vector<std::string> list() const; // device names
    std::string directory() const;

private:
    template <typename Function>
    void find(Function *&function, const char *name);

    platform::DynamicLibrary m_library;
    std::string m_path;
    decltype(&TembraSoftTokenCreate) m_create = nullptr;
    decltype(&TembraSoftTokenRemove) m_remove = nullptr;
    decltype(&TembraSoftTokenAddApplication) m_addApplication = nullptr;
    decltype(&TembraSoftTokenList) m_list = nullptr;
    decltype(&TembraSoftTokenDirectory) m_directory = nullptr;
};

// What stands before the serial number in a software token's device name.
extern const char *const SOFT_TOKEN_PREFIX;

} // namespace tembra::tool
