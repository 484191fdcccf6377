// Entry points over a token and a host library that answer whatever they like: the first part of
// the input says what, the second which entry points are called.
#include "support/lies.h"
#include "support/provider_run.h"
#include "support/session.h"

using namespace tembra;
using namespace tembra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input input(data, size);
    ProviderRun run(input);
    run.forgiveOpenHandles(); // a token that gives no handle, or gives one twice, cannot be told so
    insertToken({test::ecc("c0", true, true), test::rsa("c1", 2048, true, true)});
    const Bytes answers = input.bytes(4u * input.byte());
    Input lies(answers.data(), answers.size());
    tellLies(lies);
    Session(input).play(60);
    return 0;
}
