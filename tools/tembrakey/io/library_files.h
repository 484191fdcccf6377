// Libraries installed with the tool.
#pragma once

#include <string>
#include <vector>

namespace tembra::tool {

// The library's file in the tool's own folder and in ../lib.
std::vector<std::string> librariesNearTool(const std::string &name);

// The first path that can be read. Throws Failure that names `what` and the paths and ends with the
// advice.
std::string firstReadable(const std::vector<std::string> &paths, const std::string &what,
                          const std::string &advice);

} // namespace tembra::tool
