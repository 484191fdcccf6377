#include "process_environment.h"

#include <cstdlib>

namespace tembra::test {

// An empty value removes the variable here; a test that needs a set but empty one runs elsewhere.
void setVariable(const char *name, const std::optional<std::string> &value) {
    _putenv_s(name, value ? value->c_str() : "");
}

} // namespace tembra::test
