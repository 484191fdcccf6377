// The scenarios of the fault loops. Together they call all entry points.
#pragma once

#include "session.h"

namespace tembra::test {

struct Scenario {
    const char *name;
    const char *traceLevel;  // null: unset
    void (*insert)();        // the tokens
    void (*run)(Session &s); // throws Session::Ended
};

const std::vector<Scenario> &scenarios();

const std::vector<Secret> &secrets();

// Plain key pairs for a token that copies what it should encrypt to its output, then fails.
extern const Scenario FAILED_ENCRYPTION;

} // namespace tembra::test
