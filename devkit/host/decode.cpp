// Decoding of public keys (DER) and plain key pairs ("_KEYPAIR").
#include "platform/orvel_crypto.h"

#include "arguments.h"
#include "crypto/key_pair_blob.h"
#include "crypto/public_key.h"
#include "fault_injection/call.h"
#include "tembra_key_prov.h"

using namespace tembra;
using fault_injection::Call;

extern "C" {

int OrvelPKICryptoDecodeRSAPubKey(const unsigned char *key, int keyLen, unsigned char **n,
                                  int *nLen, unsigned char **e, int *eLen) {
    Call call(__func__);
    const auto encoding = host::view(key, keyLen);
    call.bytes("key", encoding.data(), encoding.size());
    return call.answer(0, [&] {
        const auto decoded = crypto::decodePublicKey(encoding);
        const auto *rsa = decoded ? std::get_if<crypto::RsaPublicKey>(&*decoded) : nullptr;
        if (rsa == nullptr || !host::areValid({n, nLen, e, eLen}))
            return 0;
        call.outputs().bytes("n", rsa->n.data(), rsa->n.size());
        call.bytes("e", rsa->e.data(), rsa->e.size());
        return host::outputBuffers({{n, nLen, rsa->n}, {e, eLen, rsa->e}});
    });
}

int OrvelPKICryptoDecodeECCPubKey(const unsigned char *key, int keyLen, int *curve,
                                  unsigned char **x, int *xLen, unsigned char **y, int *yLen) {
    Call call(__func__);
    const auto encoding = host::view(key, keyLen);
    call.bytes("key", encoding.data(), encoding.size());
    return call.answer(0, [&] {
        const auto decoded = crypto::decodePublicKey(encoding);
        const auto *sm2 = decoded ? std::get_if<crypto::Sm2PublicKey>(&*decoded) : nullptr;
        if (sm2 == nullptr || !host::areValid({curve, x, xLen, y, yLen}))
            return 0;
        call.outputs().bytes("x", sm2->x.data(), sm2->x.size());
        call.bytes("y", sm2->y.data(), sm2->y.size());
        const int result = host::outputBuffers({{x, xLen, sm2->x}, {y, yLen, sm2->y}});
        *curve = ORVEL_PKI_ECC_CURVE_SM2;
        return result;
    });
}

int OrvelPKICryptoDecodeECCKeyPair(const unsigned char *blob, int blobLen, int *curve,
                                   unsigned char **x, int *xLen, unsigned char **y, int *yLen,
                                   unsigned char **d, int *dLen) {
    Call call(__func__);
    call.secret("blob", blob).number("blobLen", blobLen);
    return call.answer(0, [&] {
        const auto decoded = crypto::decodeKeyPairBlob(host::view(blob, blobLen));
        const auto *sm2 = decoded ? std::get_if<crypto::Sm2KeyPair>(&*decoded) : nullptr;
        if (sm2 == nullptr || !host::areValid({curve, x, xLen, y, yLen, d, dLen}))
            return 0;
        const auto &publicKey = sm2->publicKey;
        call.outputs().bytes("x", publicKey.x.data(), publicKey.x.size());
        call.bytes("y", publicKey.y.data(), publicKey.y.size()).secret("d", sm2->d.data());
        const int result = host::outputBuffers(
            {{x, xLen, publicKey.x}, {y, yLen, publicKey.y}, {d, dLen, sm2->d}});
        *curve = ORVEL_PKI_ECC_CURVE_SM2;
        return result;
    });
}

int OrvelPKICryptoRSAPrivKeyToDER(const unsigned char *blob, int blobLen, unsigned char **der,
                                  int *derLen) {
    Call call(__func__);
    call.secret("blob", blob).number("blobLen", blobLen);
    return call.answer(0, [&] {
        const auto decoded = crypto::decodeKeyPairBlob(host::view(blob, blobLen));
        const auto *rsa = decoded ? std::get_if<crypto::RsaPrivateKey>(&*decoded) : nullptr;
        if (rsa == nullptr || !host::areValid({der, derLen}))
            return 0;
        const crypto::SecretBytes encoded = crypto::encodePkcs1(*rsa);
        call.outputs().secret("der", encoded.data());
        return host::outputBuffers({{der, derLen, encoded}});
    });
}

} // extern "C"
