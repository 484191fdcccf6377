// A library loaded at run time.
#pragma once

#include <string>

namespace tembra::tool::platform {

class DynamicLibrary {
public:
    DynamicLibrary() = default;
    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary &) = delete;
    DynamicLibrary &operator=(const DynamicLibrary &) = delete;

    // Loads the library at path (UTF-8), with its own folder searched first for what it needs.
    // Returns an empty text, or the system's reason for the failure.
    std::string open(const std::string &path);

    // Address of an exported function, or null.
    void *symbol(const char *name) const;

private:
    void *handle_ = nullptr;
};

} // namespace tembra::tool::platform
