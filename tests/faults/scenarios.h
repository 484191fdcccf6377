// What the fault loops run: together all entry points with all their ways to succeed.
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

// Bytes that no block may hold when the provider frees it or gives it back to the host library.
const std::vector<Bytes> &secrets();

} // namespace tembra::test
