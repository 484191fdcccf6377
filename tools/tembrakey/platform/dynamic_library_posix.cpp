#include "tembrakey/platform/dynamic_library.h"

#include <dlfcn.h>
#include <filesystem>

namespace tembra::tool::platform {

DynamicLibrary::~DynamicLibrary() {
    if (handle_ != nullptr)
        dlclose(handle_);
}

std::string DynamicLibrary::open(const std::string &path) {
    handle_ = dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle_ != nullptr)
        return {};
    const char *reason = dlerror();
    return reason == nullptr ? path : reason;
}

void *DynamicLibrary::symbol(const char *name) const {
    return dlsym(handle_, name);
}

} // namespace tembra::tool::platform
