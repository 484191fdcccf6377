#include "call_faults.h"

namespace tembra::test {
namespace {

template <typename Result, typename... Arguments>
void plan(Scripted<Result(Arguments...)> &function, int nth, ULONG code) {
    if constexpr (std::is_pointer_v<Result>)
        function.answerAt(nth, nullptr);
    else
        function.answerAt(nth, static_cast<Result>(code));
}

} // namespace

const std::vector<std::string> &scriptedFunctions() {
    static const std::vector<std::string> names = {
#define TEMBRA_FUNCTION(name, arity) #name,
#include "scripted_functions.inc"
    };
    return names;
}

void planAnswer(const std::string &function, int nth, ULONG code) {
#define TEMBRA_FUNCTION(name, arity)                                                               \
    if (function == #name)                                                                         \
        return plan(script().name, nth, code);
#include "scripted_functions.inc"
}

} // namespace tembra::test
