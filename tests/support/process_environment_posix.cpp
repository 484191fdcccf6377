#include "process_environment.h"

#include <cstdlib>

namespace tembra::test {

void setVariable(const char *name, const std::optional<std::string> &value) {
    if (value)
        setenv(name, value->c_str(), 1);
    else
        unsetenv(name);
}

std::vector<VariableSetter *> variableSetters() {
    return {setVariable};
}

} // namespace tembra::test
