// What the entry points' results mean to a user.
#pragma once

#include <string>

namespace tembra::tool {

// What to do about one result, translated, where a command knows better than the general advice.
struct Advice {
    int result = 1;
    std::string text;
};

// Throws the Failure for a result other than 1: entry point, result, its meaning and what to do.
void check(const char *entryPoint, int result, const Advice &advice = {});

// The same for a constructor that returned null.
[[noreturn]] void refuseNull(const char *entryPoint, const std::string &advice);

} // namespace tembra::tool
