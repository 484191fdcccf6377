// Help pages, and the texts about the tool as a whole.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace tembra::tool {

struct CommandEntry;

extern const char *const TOOL_SUMMARY;

// A block at the end of the tool's own page.
struct HelpSection {
    const char *title;
    const char *text;
};
extern const HelpSection TOOL_SECTIONS[2];

// "key" -> what its commands are about. English.
const char *groupSummary(const std::string &name);

// The page of a command, of which groups and the tool have no entry.
std::string helpPage(const CLI::App &app, const CommandEntry *entry);

} // namespace tembra::tool
