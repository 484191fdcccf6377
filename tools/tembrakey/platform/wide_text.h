// UTF-8 to and from the wide text of the Windows API. For the _windows.cpp files only.
#pragma once

#include <string>

namespace tembra::tool::platform {

std::wstring widen(const std::string &text);
std::string narrow(const std::wstring &text);

} // namespace tembra::tool::platform
