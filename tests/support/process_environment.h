// Environment variables of the running process.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tembra::test {

// Sets a variable for the whole process; no value removes it.
using VariableSetter = void(const char *name, const std::optional<std::string> &value);
VariableSetter setVariable;

// The system's own way, and that of every C run-time a host may use. On Windows an empty value
// removes the variable in the latter.
std::vector<VariableSetter *> variableSetters();

} // namespace tembra::test
