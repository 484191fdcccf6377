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

    // The same for a library that is loaded already, or that the system finds by its file name
    // apart from the folder of this program.
    std::string openNamed(const std::string &fileName);

    bool isOpen() const { return m_handle != nullptr; }

    // The file that an open library came from; empty when the system cannot tell.
    std::string path() const;

    // Address of an exported function, or null.
    void *symbol(const char *name) const;

private:
    void *m_handle = nullptr;
};

} // namespace tembra::tool::platform
