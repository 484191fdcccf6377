// Which calls and lines one wants to see.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tembrakey/trace/call.h"

namespace tembra::trace {

struct Filter {
    std::vector<std::int64_t> threads;    // empty: all
    std::vector<std::string> entryPoints; // empty: all
    Level level = Level::verbose;         // lines of this level and the more serious ones
    bool failedOnly = false;

    bool isEmpty() const;

    // Hands over the call, or those inside it, that pass. A call is handed over with all its inner
    // calls; lines of other levels are taken out, and calls with none left when the level is
    // information or more serious.
    void pass(Call &&call, const std::function<void(Call &&)> &take) const;

private:
    bool wants(const Call &call) const;
    bool keepLevels(Call &call) const;
};

} // namespace tembra::trace
