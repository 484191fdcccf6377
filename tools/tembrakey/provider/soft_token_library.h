// The control functions of the development kit's software token. The commands that use them do not
// load the provider.
#pragma once

#include <string>
#include <vector>

#include "tembra_soft_token.h"
#include "tembrakey/platform/dynamic_library.h"

namespace tembra::tool {

class SoftTokenLibrary {
public:
    // Loads QXSKFAPI from the kit. Throws Failure when it is not found or is another token's
    // library.
    SoftTokenLibrary();

    // Makes a token and returns its device name. All functions throw Failure.
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

// Precedes the serial number in a software token's device name.
extern const char *const SOFT_TOKEN_PREFIX;

} // namespace tembra::tool
