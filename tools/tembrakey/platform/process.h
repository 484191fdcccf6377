// The process and its surroundings, as UTF-8 on every platform.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tembra::tool::platform {

// The command line without the program's name.
std::vector<std::string> arguments(int argc, char **argv);

std::optional<std::string> environment(const std::string &name);

// The running executable, and its folder without a closing separator; empty when unknown.
std::string executablePath();
std::string executableFolder();

// Whether the user's interface language is Chinese, apart from environment variables.
bool systemSpeaksChinese();

// The registry key of the provider's settings, or the file that replaces it.
std::string settingsPlace();
bool settingsPlaceExists();

// File name of a library as this platform names it: QXSKFAPI -> libQXSKFAPI.so, QXSKFAPI.dll.
std::string libraryFileName(const std::string &name);

} // namespace tembra::tool::platform
