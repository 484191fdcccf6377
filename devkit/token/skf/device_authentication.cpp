// Random numbers and device authentication, which uses them as challenges.
#include "entry.h"
#include "handles.h"

#include "crypto/random.h"
#include "crypto/secret.h"
#include "crypto/sm4.h"

#include <algorithm>

using namespace tembra;
using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

constexpr ULONG MAX_RANDOM_LENGTH = 0x7FFFFFFF; // more is a negative number converted to ULONG

void rememberChallenge(OpenDevice &device, const BYTE *random) {
    const std::lock_guard guard(device.mutex);
    std::copy_n(random, device.challenge.emplace().size(), device.challenge->begin());
}

void outputRandom(OpenDevice &device, BYTE *out, ULONG length) {
    require(length <= MAX_RANDOM_LENGTH, SAR_INVALIDPARAMERR);
    require(out != nullptr || length == 0, SAR_INVALIDPARAMERR);
    crypto::fillRandom({out, length});
    if (length == std::tuple_size_v<decltype(device.challenge)::value_type>)
        rememberChallenge(device, out);
}

// The host proves knowledge of the key by returning the encrypted challenge, padded with zeros. A
// challenge is valid for one try.
void authenticate(OpenDevice &device, crypto::ByteView proof) {
    require(proof.size() == crypto::SM4_BLOCK_SIZE, SAR_INDATALENERR);
    const auto image = imageOf(device);
    const std::lock_guard guard(device.mutex);
    require(device.challenge.has_value(), SAR_NOTINITIALIZEERR);
    crypto::Sm4Block block{};
    std::copy(device.challenge->begin(), device.challenge->end(), block.begin());
    device.challenge.reset();
    const auto expected = crypto::sm4EncryptBlock(image->deviceAuthKey, block);
    device.authenticated = expected && crypto::equalConstantTime(*expected, proof);
    require(device.authenticated, SAR_FAIL);
}

} // namespace

ULONG SKF_GenRandom(DEVHANDLE hDev, BYTE *pbRandom, ULONG ulRandomLen) {
    Call call(__func__);
    call.handle("hDev", hDev).number("ulRandomLen", ulRandomLen);
    return answer(call, [&] {
        const auto opened = device(hDev);
        (void)imageOf(*opened);
        outputRandom(*opened, pbRandom, ulRandomLen);
        call.outputs().secret("pbRandom", pbRandom);
    });
}

ULONG SKF_DevAuth(DEVHANDLE hDev, BYTE *pbAuthData, ULONG ulLen) {
    Call call(__func__);
    call.handle("hDev", hDev).bytes("pbAuthData", pbAuthData, ulLen);
    return answer(call, [&] {
        const auto opened = device(hDev);
        requirePointer(pbAuthData);
        authenticate(*opened, {pbAuthData, ulLen});
    });
}
