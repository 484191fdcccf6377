// Encoding of public keys and signatures as DER.
#include "platform/orvel_crypto.h"

#include "arguments.h"
#include "crypto/public_key.h"
#include "crypto/sm2_encoding.h"
#include "fault_injection/call.h"
#include "tembra_key_prov.h"

using namespace tembra;
using fault_injection::Call;

namespace {

crypto::Bytes stripped(crypto::ByteView number) {
    const auto digits = crypto::withoutLeadingZeros(number);
    return {digits.begin(), digits.end()};
}

} // namespace

extern "C" {

int OrvelPKICryptoEncodeRSAPubKey(const unsigned char *n, int nLen, const unsigned char *e,
                                  int eLen, unsigned char **out, int *outLen) {
    Call call(__func__);
    const auto modulus = host::view(n, nLen);
    const auto exponent = host::view(e, eLen);
    call.bytes("n", modulus.data(), modulus.size());
    call.bytes("e", exponent.data(), exponent.size());
    return call.answer(0, [&] {
        const crypto::RsaPublicKey key{stripped(modulus), stripped(exponent)};
        if (key.n.empty() || key.e.empty() || !host::areValid({out, outLen}))
            return 0;
        const crypto::Bytes encoded = crypto::encodePublicKey(key);
        call.outputs().bytes("out", encoded.data(), encoded.size());
        return host::outputBuffers({{out, outLen, encoded}});
    });
}

int OrvelPKICryptoEncodeECCPubKey(int curve, const unsigned char *x, int xLen,
                                  const unsigned char *y, int yLen, unsigned char **out,
                                  int *outLen) {
    Call call(__func__);
    const auto first = host::view(x, xLen);
    const auto second = host::view(y, yLen);
    call.number("curve", curve).bytes("x", first.data(), first.size());
    call.bytes("y", second.data(), second.size());
    return call.answer(0, [&] {
        const auto shortX = crypto::toSm2Number(first);
        const auto shortY = crypto::toSm2Number(second);
        if (curve != ORVEL_PKI_ECC_CURVE_SM2 || first.empty() || second.empty() || !shortX ||
            !shortY || !host::areValid({out, outLen}))
            return 0;
        const crypto::Bytes encoded =
            crypto::encodePublicKey(crypto::Sm2PublicKey{*shortX, *shortY});
        call.outputs().bytes("out", encoded.data(), encoded.size());
        return host::outputBuffers({{out, outLen, encoded}});
    });
}

int OrvelPKICryptoEncodeECCSignature(const unsigned char *r, int rLen, const unsigned char *s,
                                     int sLen, unsigned char **out, int *outLen) {
    Call call(__func__);
    const auto first = host::view(r, rLen);
    const auto second = host::view(s, sLen);
    call.bytes("r", first.data(), first.size()).bytes("s", second.data(), second.size());
    return call.answer(0, [&] {
        const auto shortR = crypto::toSm2Number(first);
        const auto shortS = crypto::toSm2Number(second);
        if (first.empty() || second.empty() || !shortR || !shortS || !host::areValid({out, outLen}))
            return 0;
        const crypto::Bytes encoded = crypto::encodeSm2Signature({*shortR, *shortS});
        call.outputs().bytes("out", encoded.data(), encoded.size());
        return host::outputBuffers({{out, outLen, encoded}});
    });
}

} // extern "C"
