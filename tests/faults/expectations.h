// The results of entry points when a call to a library fails.
#pragma once

#include <cstdint>
#include <string>

namespace tembra::test {

// The result of this entry point if the function `call` returned `code`.
int expectedResult(const std::string &entry, const std::string &call, std::uint32_t code);

} // namespace tembra::test
