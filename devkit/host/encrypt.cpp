// Encryption to an imported public key.
#include "platform/orvel_crypto.h"

#include "arguments.h"
#include "blocks.h"
#include "crypto/public_key.h"
#include "crypto/sm2_encoding.h"
#include "fault_injection/call.h"
#include "tembra_key_prov.h"

using namespace tembra;
using fault_injection::Call;

namespace {

std::optional<crypto::Bytes> encryptSm2(const crypto::PublicKey &key, const void *param,
                                        crypto::ByteView plain) {
    const auto *sm2 = std::get_if<crypto::Sm2PublicKey>(&key);
    if (sm2 == nullptr || param == nullptr ||
        *static_cast<const int *>(param) != ORVEL_PKI_ALGORITHM_SM3)
        return std::nullopt;
    const auto cipher = crypto::sm2Encrypt(*sm2, plain);
    return cipher ? std::optional(crypto::flattenSm2Ciphertext(*cipher)) : std::nullopt;
}

std::optional<crypto::Bytes> encryptRsa(const crypto::PublicKey &key, const void *param,
                                        crypto::ByteView plain) {
    const auto *rsa = std::get_if<crypto::RsaPublicKey>(&key);
    return rsa == nullptr || param != nullptr ? std::nullopt : crypto::rsaEncrypt(*rsa, plain);
}

std::optional<crypto::Bytes> encrypt(void *publicKey, int algo, const void *param,
                                     crypto::ByteView plain) {
    const auto key = crypto::decodePublicKey(host::contentOf(publicKey));
    if (!key)
        return std::nullopt;
    switch (algo) {
    case ORVEL_PKI_ALGORITHM_SM2_ENC: return encryptSm2(*key, param, plain);
    case ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC: return encryptRsa(*key, param, plain);
    default: return std::nullopt;
    }
}

} // namespace

extern "C" int OrvelPKICryptoPublicKeyEncrypt(void *publicKey, int algo, const void *param,
                                              const unsigned char *data, int dataLen,
                                              unsigned char **out, int *outLen) {
    Call call(__func__);
    call.handle("publicKey", publicKey).number("algo", algo).handle("param", param);
    call.secret("data", data).number("dataLen", dataLen);
    return call.answer(0, [&] {
        if (!host::areValid({data, out, outLen}, {dataLen}) ||
            !host::isBlock(host::Kind::publicKey, publicKey))
            return 0;
        const auto cipher = encrypt(publicKey, algo, param, host::view(data, dataLen));
        if (!cipher)
            return 0;
        call.outputs().bytes("out", cipher->data(), cipher->size());
        return host::outputBuffers({{out, outLen, *cipher}});
    });
}
