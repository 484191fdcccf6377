// A refused PIN leaves no line of its own in the log. It shows only where the next PIN line of the
// same device and PIN type prints fewer remaining tries.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "tembrakey/trace/line.h"

namespace tembra::trace {

struct RefusedPin {
    std::uint64_t line = 0; // of the call whose PIN was probably refused
    Time time;
    std::int64_t thread = 0;
    std::string entryPoint;
};

class RefusedPins {
public:
    // Returns the earlier attempt that this line proves to have been refused.
    std::optional<RefusedPin> add(const Line &line, std::uint64_t number);

private:
    struct Attempt {
        RefusedPin pin;
        int tries;
    };

    std::map<std::string, Attempt> m_last; // by device and PIN type
};

} // namespace tembra::trace
