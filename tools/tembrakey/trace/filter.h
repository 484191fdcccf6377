// Selects calls and lines.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tembrakey/trace/call.h"

namespace tembra::trace {

struct Filter {
    std::vector<std::int64_t> threads;    // empty: all
    std::vector<std::string> entryPoints; // empty: all
    Level level = Level::verbose;         // this level and the more serious ones
    bool failedOnly = false;

    bool isEmpty() const;
    bool wants(std::int64_t thread, const std::string &entryPoint) const;
    // Passes on the call, or those inside it that are selected. A call is passed on with all its
    // inner calls, without the lines of other levels; not at all if then nothing is left of it.
    void pass(Call &&call, const std::function<void(Call &&)> &take) const;

private:
    bool keepLevels(Call &call) const;
};

} // namespace tembra::trace
