// Entry points over a token and a host library that return arbitrary outputs: the first part of the
// input determines the outputs, the second the entry points.
#include "support/faulty_replies.h"
#include "support/provider_run.h"
#include "support/session.h"

using namespace tembra;
using namespace tembra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input input(data, size);
    ProviderRun run(input);
    run.allowOpenHandles(); // a token may return no handle, or one twice
    insertToken({test::ecc("c0", true, true), test::rsa("c1", 2048, true, true)});
    const Bytes answers = input.bytes(4u * input.byte());
    Input replies(answers.data(), answers.size());
    scriptFaultyReplies(replies);
    Session(input).play(60);
    return 0;
}
