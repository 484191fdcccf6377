// What the log's reader knows of the provider's entry points.
#pragma once

#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace tembra::trace {

struct EntryPoint {
    std::string_view name;
    std::vector<std::string_view> arguments; // their names, in order
};

// Sorted by name.
std::span<const EntryPoint> entryPoints();

// Null when there is none of that name.
const EntryPoint *findEntryPoint(std::string_view name);

// The entry point whose call a line of this routine proves when no other call is known on its
// thread; empty for routines of several entry points. An entry point proves its own.
std::string_view callOf(std::string_view function);

// Whether the message is the first that a call writes of itself at level information.
bool opensCall(std::string_view message);

// "hDevice = 0x55, int type = 1" as names and values, as far as the message has the entry point's
// arguments. Values may hold any characters.
using Arguments = std::vector<std::pair<std::string_view, std::string_view>>;
Arguments readArguments(std::string_view entryPoint, std::string_view message);

} // namespace tembra::trace
