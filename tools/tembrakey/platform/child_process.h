// This program once more, as a child process.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tembra::tool::platform {

// For this process and its children; an empty value removes the variable.
void setEnvironment(const std::string &name, const std::string &value);

struct ChildEnd {
    bool timedOut = false;
    std::string status; // "signal 11", "exit code 1"
};

// Runs this program with one argument and hands each line of its standard output to take. Ends it
// when it writes nothing for that many seconds.
ChildEnd runSelf(const std::string &argument, int seconds,
                 const std::function<void(std::string_view)> &take);

} // namespace tembra::tool::platform
