#include "process_environment.h"

#include <cstdlib>
#include <windows.h>

namespace tembra::test {

namespace {

void setInMsvcrt(const char *name, const std::optional<std::string> &value) {
    _putenv_s(name, value.value_or("").c_str());
}

void setInUcrt(const char *name, const std::optional<std::string> &value) {
    static const auto put = reinterpret_cast<int (*)(const char *, const char *)>(
        reinterpret_cast<void *>(GetProcAddress(LoadLibraryA("ucrtbase.dll"), "_putenv_s")));
    put(name, value.value_or("").c_str());
}

} // namespace

void setVariable(const char *name, const std::optional<std::string> &value) {
    SetEnvironmentVariableA(name, value ? value->c_str() : nullptr);
}

std::vector<VariableSetter *> variableSetters() {
    return {setVariable, setInMsvcrt, setInUcrt};
}

} // namespace tembra::test
