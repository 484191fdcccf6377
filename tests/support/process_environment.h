// Environment variables of the running process, as the provider's getenv sees them.
#pragma once

#include <optional>
#include <string>

namespace tembra::test {

// No value removes the variable.
void setVariable(const char *name, const std::optional<std::string> &value);

} // namespace tembra::test
