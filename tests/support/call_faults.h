// Planned results of the scripted functions by name (ELF only).
#pragma once

#include "scripted_token.h"

namespace tembra::test {

// The functions that the provider imports.
const std::vector<std::string> &scriptedFunctions();

// The nth call of the function from now on only returns this code; a function that returns a
// pointer returns null.
void planAnswer(const std::string &function, int nth, ULONG code);

} // namespace tembra::test
