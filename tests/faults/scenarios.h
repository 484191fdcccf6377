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

// Bytes that no block of the provider may hold when it is freed.
const std::vector<Bytes> &secrets();

} // namespace tembra::test
