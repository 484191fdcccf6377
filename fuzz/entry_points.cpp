// Entry points in any order with any arguments, over correct tokens; a plan, which is part of the
// input, makes calls and allocations fail.
#include "support/provider_run.h"
#include "support/session.h"

#include "../tests/support/call_faults.h"
#include "../tests/support/key_pair_blobs.h"
#include "../tests/support/provider_allocator.h"

using namespace tembra;
using namespace tembra::fuzz;

namespace {

const ULONG CODES[] = {SAR_FAIL,
                       SAR_USER_NOT_LOGGED_IN,
                       SAR_OBJERR,
                       SAR_DECRYPTPADERR,
                       SAR_DEVICE_REMOVED,
                       SAR_PIN_INCORRECT,
                       SAR_PIN_LOCKED,
                       SAR_PIN_LEN_RANGE,
                       0x0B000033,
                       0x000000B3,
                       1,
                       3};

// One or two tokens: one with an application of three containers, one without applications.
void insertTokens(Input &input) {
    test::ApplicationModel &application = insertToken(
        {test::ecc("c0", true, true), test::rsa("c1", 1024, true, input.once(2)), {"c2"}});
    application.containers.front().signCertificate = Bytes(input.byte(), 0x30);
    application.files["1"] = {Bytes(64, 0x31), SECURE_ANYONE_ACCOUNT, SECURE_USER_ACCOUNT};
    if (input.once(4))
        test::script().memory.addDevice("blank");
}

void planFaults(Input &input, ProviderRun &run) {
    for (unsigned faults = input.byte() % 4; faults > 0; --faults) {
        const std::string &function = input.pick(test::scriptedFunctions());
        const int nth = 1 + input.byte() % 8;
        const ULONG code = input.pick(CODES);
        if (function.find("Free") != std::string::npos)
            run.allowHostLeaks();
        // 1 is success for the host library, which would then have to return something.
        test::planAnswer(function, nth, code == 1 && function[0] == 'O' ? 0 : code);
        run.allowOpenHandles();
    }
    if (input.once(4)) {
        run.allowOpenHandles();
        test::ProviderAllocator::failAt(1 + input.number() % 500, input.once(4));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input input(data, size);
    ProviderRun run(input);
    insertTokens(input);
    test::allowPlainRsa(1024);
    planFaults(input, run);
    Session(input).play(100);
    return 0;
}
