// DevicePrivateKeyDecrypt with an SM2 ciphertext of any bytes and buffers of any size.
#include "support/faulty_replies.h"
#include "support/provider_run.h"

#include "../tests/support/call_faults.h"

using namespace tembra;
using namespace tembra::fuzz;

namespace {

const ULONG ANSWERS[] = {SAR_OK, SAR_OK, SAR_OK, SAR_USER_NOT_LOGGED_IN, 3, SAR_FAIL};
const int ALGORITHMS[] = {ORVEL_PKI_ALGORITHM_SM2_ENC, ORVEL_PKI_ALGORITHM_SM2_ENC,
                          ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC, ORVEL_PKI_ALGORITHM_SM2_SIGN};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input input(data, size);
    ProviderRun run(input);
    insertToken({input.once(4) ? test::rsa("c", 1024, true, true) : test::ecc("c", true, true)});
    const OneDevice device;
    SPI_KEYPAIR_HANDLE pair = DeviceGetKeypair(device, input.byte() % 2);
    const int algorithm = input.pick(ALGORITHMS);
    const int hash = input.once(8) ? 0x7001 : ORVEL_PKI_ALGORITHM_SM3;
    const void *param = input.once(8) ? nullptr : &hash;
    if (const ULONG answer = input.pick(ANSWERS)) {
        test::planAnswer("SKF_ECCDecrypt", 1, answer);
        test::planAnswer("SKF_RSADecrypt", 1, answer);
    }
    const Bytes faults = input.bytes(input.byte() % 16);
    Input replies(faults.data(), faults.size());
    if (!replies.done())
        scriptFaultyReplies(replies);
    const ExactBlock clear(Bytes(input.byte() * 2u, 0xEE));
    const ExactBlock cipher(input.rest());

    int length = -1;
    const int rv = DevicePrivateKeyDecrypt(pair, algorithm, param, cipher.data(), cipher.size(),
                                           clear.data(), clear.size(), &length);
    require(rv == 1 || rv == 0 || rv == TEMBRA_BAD_ARGUMENT || rv == TEMBRA_NOT_LOGGED_IN ||
                rv == ORVEL_PKI_MOREDATA,
            "an undefined result");
    require(rv != 1 || (length >= 0 && length <= clear.size()), "a length beyond the buffer");
    require(rv != ORVEL_PKI_MOREDATA || length > clear.size(), "a sufficient buffer was refused");
    for (int i = rv == 1 ? length : 0; i < clear.size(); ++i)
        require(clear.data()[i] == 0xEE, "bytes were written beyond the output");
    DeviceFreeKeypair(pair);
    return 0;
}
