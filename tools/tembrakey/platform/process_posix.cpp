#include "tembrakey/platform/process.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tembra::tool::platform {

std::vector<std::string> arguments(int argc, char **argv) {
    return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

std::optional<std::string> environment(const std::string &name) {
    const char *value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::string executablePath() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

std::string executableFolder() {
    return std::filesystem::path(executablePath()).parent_path().string();
}

bool systemSpeaksChinese() {
    return false;
}

std::string settingsPlace() {
    return environment("TEMBRA_KEY_PROV_REGISTRY").value_or("/etc/tembra_key_prov.reg");
}

bool settingsPlaceExists() {
    std::error_code error;
    return std::filesystem::exists(settingsPlace(), error);
}

std::string libraryFileName(const std::string &name) {
    return "lib" + name + ".so";
}

} // namespace tembra::tool::platform
