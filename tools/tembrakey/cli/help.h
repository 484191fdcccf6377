// The words and the shape of the help pages.
#pragma once

#include <memory>
#include <string>

namespace CLI {
class FormatterBase;
}

namespace tembra::tool {

extern const char *const TOOL_SUMMARY;
extern const char *const TOOL_FOOTER; // exit codes and environment variables

// "key" -> what its commands are about. English.
const char *groupSummary(const std::string &name);

std::shared_ptr<CLI::FormatterBase> makeHelpFormatter();

} // namespace tembra::tool
