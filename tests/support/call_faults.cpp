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
#define TEMBRA_IMPORT(result, name, parameters) #name,
#include "platform/orvel_crypto_functions.h"
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
    };
    return names;
}

void planAnswer(const std::string &function, int nth, ULONG code) {
#define TEMBRA_IMPORT(result, name, parameters)                                                    \
    if (function == #name)                                                                         \
        return plan(script().name, nth, code);
#include "platform/orvel_crypto_functions.h"
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
}

} // namespace tembra::test
