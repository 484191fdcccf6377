// Key pairs: generating and importing; exporting public keys.
#include "entry.h"
#include "handles.h"

#include "token/model/containers.h"
#include "token/model/envelopes.h"
#include "token/model/key_blobs.h"

#include <utility>

using namespace tembra;
using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

constexpr bool SIGNATURE_PLACE = true;
constexpr bool ENCRYPTION_PLACE = false;

// Generating a key takes time, so check first whether it can be stored.
void requireRoomForKey(const OpenContainer &found, ULONG type) {
    requireUser(*found.application);
    const auto image = imageOf(*found.application->device);
    const ULONG present = model::containerType(locate(*image, found));
    require(present == CONTAINER_TYPE_EMPTY || present == type, SAR_KEYUSAGEERR);
}

void store(const OpenContainer &found, bool place, crypto::PrivateKey key) {
    model::Change change(found.token());
    model::putKey(locate(change.image(), found), place, std::move(key));
    change.commit();
}

RSAPUBLICKEYBLOB generateRsa(const OpenContainer &found, ULONG bits) {
    requireRoomForKey(found, CONTAINER_TYPE_RSA);
    auto key = crypto::generateRsaKey(bits);
    require(key.has_value(), SAR_MODULUSLENERR);
    const RSAPUBLICKEYBLOB blob = model::toBlob(key->publicKey());
    store(found, SIGNATURE_PLACE, std::move(*key));
    return blob;
}

ECCPUBLICKEYBLOB generateSm2(const OpenContainer &found, ULONG algorithm) {
    require(algorithm == SGD_SM2_1, SAR_NOTSUPPORTYETERR);
    requireRoomForKey(found, CONTAINER_TYPE_ECC);
    auto key = crypto::generateSm2KeyPair();
    const ECCPUBLICKEYBLOB blob = model::toBlob(key.publicKey);
    store(found, SIGNATURE_PLACE, std::move(key));
    return blob;
}

// Stores the key pair that `open` takes from an envelope with the signature key of the container.
template <typename Key, typename Open>
void importKey(const OpenContainer &found, Open open) {
    requireUser(*found.application);
    const auto image = imageOf(*found.application->device);
    const Key &signatureKey = model::keyOf<Key>(locate(*image, found), SIGNATURE_PLACE);
    store(found, ENCRYPTION_PLACE, open(signatureKey));
}

void outputPublicKey(const crypto::PrivateKey &key, BYTE *out, ULONG *length) {
    const auto output = [&](const auto &blob) {
        outputBytes({reinterpret_cast<const BYTE *>(&blob), sizeof blob}, out, length);
    };
    if (const auto *rsa = std::get_if<crypto::RsaPrivateKey>(&key))
        output(model::toBlob(rsa->publicKey()));
    else
        output(model::toBlob(std::get<crypto::Sm2KeyPair>(key).publicKey));
}

} // namespace

ULONG SKF_GenRSAKeyPair(HCONTAINER hContainer, ULONG ulBitsLen, RSAPUBLICKEYBLOB *pBlob) {
    Call call(__func__);
    call.handle("hContainer", hContainer).number("ulBitsLen", ulBitsLen);
    return answer(call, [&] {
        const auto found = container(hContainer);
        requirePointer(pBlob);
        *pBlob = generateRsa(*found, ulBitsLen);
        call.outputs().bytes("pBlob", pBlob, sizeof *pBlob);
    });
}

ULONG SKF_GenECCKeyPair(HCONTAINER hContainer, ULONG ulAlgId, ECCPUBLICKEYBLOB *pBlob) {
    Call call(__func__);
    call.handle("hContainer", hContainer).number("ulAlgId", ulAlgId);
    return answer(call, [&] {
        const auto found = container(hContainer);
        requirePointer(pBlob);
        *pBlob = generateSm2(*found, ulAlgId);
        call.outputs().bytes("pBlob", pBlob, sizeof *pBlob);
    });
}

ULONG SKF_ImportECCKeyPair(HCONTAINER hContainer, ENVELOPEDKEYBLOB *pEnvelopedKeyBlob) {
    Call call(__func__);
    call.handle("hContainer", hContainer);
    call.bytes("pEnvelopedKeyBlob", pEnvelopedKeyBlob, sizeof *pEnvelopedKeyBlob);
    return answer(call, [&] {
        const auto found = container(hContainer);
        requirePointer(pEnvelopedKeyBlob);
        importKey<crypto::Sm2KeyPair>(*found, [&](const crypto::Sm2KeyPair &signatureKey) {
            return model::openEnvelope(signatureKey, *pEnvelopedKeyBlob);
        });
    });
}

ULONG SKF_ImportRSAKeyPair(HCONTAINER hContainer, ULONG ulSymAlgId, BYTE *pbWrappedKey,
                           ULONG ulWrappedKeyLen, BYTE *pbEncryptedData, ULONG ulEncryptedDataLen) {
    Call call(__func__);
    call.handle("hContainer", hContainer).number("ulSymAlgId", ulSymAlgId);
    call.bytes("pbWrappedKey", pbWrappedKey, ulWrappedKeyLen);
    call.bytes("pbEncryptedData", pbEncryptedData, ulEncryptedDataLen);
    return answer(call, [&] {
        const auto found = container(hContainer);
        const auto wrapped = bytesArgument(pbWrappedKey, ulWrappedKeyLen);
        const auto encrypted = bytesArgument(pbEncryptedData, ulEncryptedDataLen);
        importKey<crypto::RsaPrivateKey>(*found, [&](const crypto::RsaPrivateKey &signatureKey) {
            return model::openEnvelope(signatureKey, ulSymAlgId, wrapped, encrypted);
        });
    });
}

ULONG SKF_ExportPublicKey(HCONTAINER hContainer, BOOL bSignFlag, BYTE *pbBlob, ULONG *pulBlobLen) {
    Call call(__func__);
    call.handle("hContainer", hContainer).number("bSignFlag", bSignFlag).handle("pbBlob", pbBlob);
    return answer(call, [&] {
        const auto found = container(hContainer);
        const auto image = imageOf(*found->application->device);
        const auto &slot = model::slotOf(locate(*image, *found), bSignFlag != 0);
        require(slot.key.has_value(), SAR_KEYNOTFOUNTERR);
        outputPublicKey(*slot.key, pbBlob, pulBlobLen);
        call.outputs().bytes("pbBlob", pbBlob, *pulBlobLen);
    });
}
