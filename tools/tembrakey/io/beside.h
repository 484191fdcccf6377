// Libraries that lie near the tool.
#pragma once

#include <string>
#include <vector>

namespace tembra::tool {

// The tool's own folder and then ../lib, with the platform's file name for the library.
std::vector<std::string> librariesBeside(const std::string &name);

// The first of the paths that can be read. Throws Failure that says what was looked for and where,
// with advice at its end.
std::string firstReadable(const std::vector<std::string> &paths, const std::string &what,
                          const std::string &advice);

} // namespace tembra::tool
