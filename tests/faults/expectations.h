// What a failed call below the provider makes of the entry point that made it.
#pragma once

#include <cstdint>
#include <string>

namespace tembra::test {

struct Expectation {
    int result;
    std::string line; // in the trace; empty: no line names the call
};

// entry as the scenario calls it, call the function that answered the code.
Expectation expected(const std::string &entry, const std::string &call, std::uint32_t code);

} // namespace tembra::test
