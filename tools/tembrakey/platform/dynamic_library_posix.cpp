#include "tembrakey/platform/dynamic_library.h"

#include <dlfcn.h>
#include <filesystem>
#include <link.h>

namespace tembra::tool::platform {

DynamicLibrary::~DynamicLibrary() {
    if (m_handle != nullptr)
        dlclose(m_handle);
}

std::string DynamicLibrary::open(const std::string &path) {
    return openNamed(std::filesystem::absolute(path).string());
}

std::string DynamicLibrary::openNamed(const std::string &fileName) {
    m_handle = dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_handle != nullptr)
        return {};
    const char *reason = dlerror();
    return reason == nullptr ? fileName : reason;
}

std::string DynamicLibrary::path() const {
    link_map *entry = nullptr;
    if (dlinfo(m_handle, RTLD_DI_LINKMAP, &entry) != 0)
        return {};
    std::error_code error;
    const auto path = std::filesystem::canonical(entry->l_name, error);
    return error ? entry->l_name : path.string();
}

void *DynamicLibrary::symbol(const char *name) const {
    return dlsym(m_handle, name);
}

} // namespace tembra::tool::platform
