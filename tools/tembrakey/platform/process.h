// What the process got from its surroundings, as UTF-8 on every platform.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tembra::tool::platform {

// The command line without the program's name.
std::vector<std::string> arguments(int argc, char **argv);

std::optional<std::string> environment(const std::string &name);

// Folder of the running executable, without a closing separator; empty when unknown.
std::string executableFolder();

// Whether the user's interface language is Chinese, apart from environment variables.
bool systemSpeaksChinese();

// Makes standard streams carry bytes as they are, and the console show UTF-8.
void prepareStreams();

// Where the provider's settings stand: a registry key, or the file in its place.
std::string settingsPlace();
// Whether that place is there at all.
bool settingsPlaceExists();

// File name of a library as this platform names it: QXSKFAPI -> libQXSKFAPI.so, QXSKFAPI.dll.
std::string libraryFileName(const std::string &name);

} // namespace tembra::tool::platform
