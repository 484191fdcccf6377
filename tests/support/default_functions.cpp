// All functions that the provider imports, for a test library that overrides a few of them: each
// ignores its arguments. A token function returns TEMBRA_DEFAULT_TOKEN_RESULT, a host function 1.
#include "platform/orvel_crypto.h"
#include "platform/skf.h"

#pragma GCC diagnostic ignored "-Wunused-parameter"

namespace {

unsigned char object; // what handles refer to

template <typename Result>
Result convert(ULONG value) {
    return static_cast<Result>(value);
}

template <>
void *convert<void *>(ULONG) {
    return &object;
}

} // namespace

extern "C" {
#define TEMBRA_IMPORT(result, name, parameters)                                                    \
    [[gnu::weak]] result name parameters {                                                         \
        return convert<result>(TEMBRA_DEFAULT_TOKEN_RESULT);                                       \
    }
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT

#define TEMBRA_IMPORT(result, name, parameters)                                                    \
    [[gnu::weak]] result name parameters {                                                         \
        return convert<result>(1);                                                                 \
    }
#include "platform/orvel_crypto_functions.h"
#undef TEMBRA_IMPORT
}
