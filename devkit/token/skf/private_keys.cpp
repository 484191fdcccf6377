// Signing and decrypting with private keys.
#include "entry.h"
#include "handles.h"

#include "token/model/containers.h"
#include "token/model/key_blobs.h"

using namespace tembra;
using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

constexpr std::size_t PADDING_SIZE = 11; // the least that PKCS #1 v1.5 adds

// A private key of a container with a logged-in user.
template <typename Key>
class PrivateKeyOf {
public:
    PrivateKeyOf(HCONTAINER handle, bool signature) : m_container(container(handle)) {
        requireUser(*m_container->application);
        m_image = imageOf(*m_container->application->device);
        m_key = &model::keyOf<Key>(locate(*m_image, *m_container), signature);
    }
    const Key &operator*() const { return *m_key; }
    const Key *operator->() const { return m_key; }

private:
    std::shared_ptr<OpenContainer> m_container;
    model::Snapshot m_image;
    const Key *m_key;
};

void signRsa(const crypto::RsaPrivateKey &key, crypto::ByteView data, BYTE *out, ULONG *length) {
    require(!data.empty() && data.size() + PADDING_SIZE <= key.n.size(), SAR_INDATALENERR);
    if (!roomFor(key.n.size(), out, length))
        return;
    const auto signature = crypto::rsaSign(key, data);
    require(signature.has_value(), SAR_FAIL);
    outputBytes(*signature, out, length);
}

void decryptRsa(const crypto::RsaPrivateKey &key, crypto::ByteView cipher, BYTE *out,
                ULONG *length) {
    requirePointer(length);
    require(cipher.size() == key.n.size(), SAR_INDATALENERR);
    if (out == nullptr) { // the exact length is known only after decryption
        *length = static_cast<ULONG>(key.n.size());
        return;
    }
    const auto plain = crypto::rsaDecrypt(key, cipher);
    require(plain.has_value(), SAR_DECRYPTPADERR);
    outputBytes(*plain, out, length);
}

void decryptSm2(const crypto::Sm2KeyPair &key, const ECCCIPHERBLOB &cipher, BYTE *out,
                ULONG *length) {
    require(cipher.CipherLen > 0, SAR_INDATALENERR);
    if (!roomFor(cipher.CipherLen, out, length))
        return;
    const auto plain = crypto::sm2Decrypt(key.d, model::fromBlob(cipher));
    require(plain.has_value(), SAR_INDATAERR);
    outputBytes(*plain, out, length);
}

} // namespace

ULONG SKF_RSASignData(HCONTAINER hContainer, BYTE *pbData, ULONG ulDataLen, BYTE *pbSignature,
                      ULONG *pulSignLen) {
    Call call(__func__);
    call.handle("hContainer", hContainer).bytes("pbData", pbData, ulDataLen);
    return answer(call, [&] {
        const PrivateKeyOf<crypto::RsaPrivateKey> key(hContainer, true);
        signRsa(*key, bytesArgument(pbData, ulDataLen), pbSignature, pulSignLen);
        call.outputs().bytes("pbSignature", pbSignature, *pulSignLen);
    });
}

ULONG SKF_ECCSignData(HCONTAINER hContainer, BYTE *pbData, ULONG ulDataLen,
                      ECCSIGNATUREBLOB *pSignature) {
    Call call(__func__);
    call.handle("hContainer", hContainer).bytes("pbData", pbData, ulDataLen);
    return answer(call, [&] {
        const PrivateKeyOf<crypto::Sm2KeyPair> key(hContainer, true);
        requirePointer(pSignature);
        const auto data = bytesArgument(pbData, ulDataLen);
        require(data.size() == crypto::SM3_SIZE, SAR_INDATALENERR);
        const auto signature = crypto::sm2Sign(*key, data);
        require(signature.has_value(), SAR_FAIL);
        *pSignature = model::toBlob(*signature);
        call.outputs().bytes("pSignature", pSignature, sizeof *pSignature);
    });
}

ULONG SKF_RSADecrypt(HCONTAINER hContainer, BOOL bSignKey, BYTE *pbIn, ULONG ulInLen, BYTE *pbOut,
                     ULONG *pulOutLen) {
    Call call(__func__);
    call.handle("hContainer", hContainer).number("bSignKey", bSignKey);
    call.bytes("pbIn", pbIn, ulInLen);
    return answer(call, [&] {
        const PrivateKeyOf<crypto::RsaPrivateKey> key(hContainer, bSignKey != 0);
        decryptRsa(*key, bytesArgument(pbIn, ulInLen), pbOut, pulOutLen);
        call.outputs().secret("pbOut", pbOut).number("pulOutLen", *pulOutLen);
    });
}

ULONG SKF_ECCDecrypt(HCONTAINER hContainer, BOOL bSignKey, ECCCIPHERBLOB *pCipher, BYTE *pbOut,
                     ULONG *pulOutLen) {
    Call call(__func__);
    call.handle("hContainer", hContainer).number("bSignKey", bSignKey);
    call.bytes("pCipher", pCipher, offsetof(ECCCIPHERBLOB, Cipher));
    return answer(call, [&] {
        const PrivateKeyOf<crypto::Sm2KeyPair> key(hContainer, bSignKey != 0);
        requirePointer(pCipher);
        decryptSm2(*key, *pCipher, pbOut, pulOutLen);
        call.outputs().secret("pbOut", pbOut).number("pulOutLen", *pulOutLen);
    });
}
