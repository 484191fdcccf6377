// DeviceImportKeypair with a plain blob ("_KEYPAIR") of any bytes, over a host library and a token
// that return any lengths while the provider envelopes the key pair.
#include "support/faulty_replies.h"
#include "support/provider_run.h"

#include "../tests/support/key_pair_blobs.h"

using namespace tembra;
using namespace tembra::fuzz;

namespace {

const ULONG CAPABILITIES[] = {SGD_SM1_ECB, SGD_SSF33_ECB, SGD_SMS4_ECB, 0x00000001, 0x00000400};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input input(data, size);
    ProviderRun run(input);
    insertTokenForImports(input);
    test::script().memory.devices.front().info.AlgSymCap = input.pick(CAPABILITIES);
    const OneDevice device;
    test::allowPlainRsa(input.byte() & 1u ? 2048 : 1024);
    const Bytes answers = input.bytes(input.byte());
    Input replies(answers.data(), answers.size());
    if (!replies.done())
        scriptFaultyReplies(replies);
    const ExactBlock blob(input.rest());

    SPI_KEYPAIR_HANDLE pair = nullptr;
    const int rv = DeviceImportKeypair(device, blob.data(), blob.size(),
                                       ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, "c", &pair);
    require(rv == 1 || rv == 0 || rv == TEMBRA_BAD_ARGUMENT, "an undefined result");
    require((rv == 1) == (pair != nullptr), "the handle contradicts the result");
    DeviceFreeKeypair(pair);
    return 0;
}
