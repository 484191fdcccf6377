// SM3 digests, and closing the handles of keys and digests.
#include "entry.h"
#include "handles.h"

#include "token/model/key_blobs.h"

#include "crypto/sm2_sign.h"

#include <memory>
#include <string_view>

using namespace tembra;
using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

// A signed digest begins with Z, the digest of the signer's identity and public key.
void addSigner(crypto::Digest &digest, const ECCPUBLICKEYBLOB *publicKey, crypto::ByteView id) {
    requirePointer(publicKey);
    const auto z = crypto::sm2SignerDigest(model::fromBlob(*publicKey), crypto::asText(id));
    require(z.has_value(), SAR_INDATALENERR);
    digest.update(*z);
}

std::shared_ptr<RunningDigest> startDigest(std::shared_ptr<OpenDevice> device, ULONG algorithm,
                                           const ECCPUBLICKEYBLOB *publicKey, crypto::ByteView id) {
    (void)imageOf(*device);
    require(algorithm == SGD_SM3, SAR_NOTSUPPORTYETERR);
    auto running = std::make_shared<RunningDigest>();
    running->digest.emplace(crypto::DigestAlgorithm::sm3);
    if (!id.empty())
        addSigner(*running->digest, publicKey, id);
    running->device = std::move(device);
    return running;
}

void update(RunningDigest &running, crypto::ByteView data) {
    const std::lock_guard guard(running.mutex);
    require(running.digest.has_value(), SAR_NOTINITIALIZEERR);
    running.digest->update(data);
}

void finish(RunningDigest &running, BYTE *out, ULONG *length) {
    const std::lock_guard guard(running.mutex);
    require(running.digest.has_value(), SAR_NOTINITIALIZEERR);
    if (roomFor(crypto::SM3_SIZE, out, length)) {
        outputBytes(running.digest->value(), out, length);
        running.digest.reset();
    }
}

} // namespace

ULONG SKF_DigestInit(DEVHANDLE hDev, ULONG ulAlgID, ECCPUBLICKEYBLOB *pPubKey, BYTE *pbID,
                     ULONG ulIDLen, HANDLE *phHash) {
    Call call(__func__);
    call.handle("hDev", hDev).number("ulAlgID", ulAlgID);
    call.bytes("pPubKey", pPubKey, sizeof *pPubKey).bytes("pbID", pbID, ulIDLen);
    return answer(call, [&] {
        auto opened = device(hDev);
        requirePointer(phHash);
        *phHash = handles().digests.add(
            startDigest(std::move(opened), ulAlgID, pPubKey, bytesArgument(pbID, ulIDLen)));
        call.outputs().handle("phHash", *phHash);
    });
}

ULONG SKF_DigestUpdate(HANDLE hHash, BYTE *pbData, ULONG ulDataLen) {
    Call call(__func__);
    call.handle("hHash", hHash).bytes("pbData", pbData, ulDataLen);
    return answer(call, [&] { update(*digest(hHash), bytesArgument(pbData, ulDataLen)); });
}

ULONG SKF_DigestFinal(HANDLE hHash, BYTE *pbHashData, ULONG *pulHashLen) {
    Call call(__func__);
    call.handle("hHash", hHash).handle("pbHashData", pbHashData);
    return answer(call, [&] {
        finish(*digest(hHash), pbHashData, pulHashLen);
        call.outputs().bytes("pbHashData", pbHashData, *pulHashLen);
    });
}

ULONG SKF_CloseHandle(HANDLE hHandle) {
    Call call(__func__);
    call.handle("hHandle", hHandle);
    return answer(call, [&] {
        const bool closed = handles().keys.take(hHandle) || handles().digests.take(hHandle);
        require(closed, SAR_INVALIDHANDLEERR);
    });
}
