#include "scripted_token.h"

#include <memory>

namespace tembra::test {
namespace {

std::unique_ptr<TokenScript> &current() {
    static auto instance = std::make_unique<TokenScript>();
    return instance;
}

template <typename Function>
struct Signature;
template <typename Result, typename... Arguments>
struct Signature<Result(Arguments...)> {
    using Returned = Result;
    template <std::size_t Index>
    using Argument = std::tuple_element_t<Index, std::tuple<Arguments...>>;
};

} // namespace

bool givesBack(const std::string &function) {
    return function.starts_with("SKF_Close") || function.starts_with("OrvelPKICryptoFree") ||
           function == "SKF_DisConnectDev" || function == "SKF_UnlockDev";
}

TokenScript &script() {
    return *current();
}

void resetScript() {
    current() = std::make_unique<TokenScript>();
}

} // namespace tembra::test

using tembra::test::script;
using tembra::test::Signature;

// Exports one function that forwards to the script: the macro for the number of its parameters.
// clang-format off
#define R(f) Signature<decltype(f)>::Returned
#define A(f, i) Signature<decltype(f)>::Argument<i>
#define TEMBRA_EXPORT_0(f) R(f) f() { return script().f(); }
#define TEMBRA_EXPORT_1(f) R(f) f(A(f,0) a) { return script().f(a); }
#define TEMBRA_EXPORT_2(f) R(f) f(A(f,0) a, A(f,1) b) { return script().f(a, b); }
#define TEMBRA_EXPORT_3(f) R(f) f(A(f,0) a, A(f,1) b, A(f,2) c) { return script().f(a, b, c); }
#define TEMBRA_EXPORT_4(f) R(f) f(A(f,0) a, A(f,1) b, A(f,2) c, A(f,3) d) { return script().f(a, b, c, d); }
#define TEMBRA_EXPORT_5(f) R(f) f(A(f,0) a, A(f,1) b, A(f,2) c, A(f,3) d, A(f,4) e) { return script().f(a, b, c, d, e); }
#define TEMBRA_EXPORT_6(f) R(f) f(A(f,0) a, A(f,1) b, A(f,2) c, A(f,3) d, A(f,4) e, A(f,5) g) { return script().f(a, b, c, d, e, g); }
#define TEMBRA_EXPORT_7(f) R(f) f(A(f,0) a, A(f,1) b, A(f,2) c, A(f,3) d, A(f,4) e, A(f,5) g, A(f,6) h) { return script().f(a, b, c, d, e, g, h); }
#define TEMBRA_EXPORT_9(f) R(f) f(A(f,0) a, A(f,1) b, A(f,2) c, A(f,3) d, A(f,4) e, A(f,5) g, A(f,6) h, A(f,7) i, A(f,8) j) { return script().f(a, b, c, d, e, g, h, i, j); }
#define TEMBRA_COUNT(...) TEMBRA_PICK(__VA_ARGS__ __VA_OPT__(,) 9, 8, 7, 6, 5, 4, 3, 2, 1, 0)
#define TEMBRA_PICK(a, b, c, d, e, f, g, h, i, count, ...) count
#define TEMBRA_JOIN(count, name) TEMBRA_EXPORT_##count(name)
#define TEMBRA_EXPORT(count, name) TEMBRA_JOIN(count, name)
// clang-format on

extern "C" {
#define TEMBRA_IMPORT(result, name, parameters) TEMBRA_EXPORT(TEMBRA_COUNT parameters, name)
#include "platform/orvel_crypto_functions.h"
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
}
