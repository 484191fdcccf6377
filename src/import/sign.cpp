// Signing with a signature key pair on the token.
#include "import/host_buffer.h"
#include "log/trace.h"
#include "platform/memory.h"
#include "platform/orvel_crypto.h"
#include "platform/skf_arguments.h"
#include "provider/buffer.h"
#include "provider/keypair_table.h"
#include "provider/lock.h"
#include "provider/outcome.h"

using namespace tembra;

namespace {

constexpr int SM2_SIGNATURE_BOUND = 80; // above the largest encoded SM2 signature
constexpr int SM2_INTEGER_LEN = 32;
constexpr int SM2_INTEGER_AT = ECC_MAX_COORDINATE_LEN - SM2_INTEGER_LEN;
constexpr ULONG VENDOR_NOT_LOGGED_IN = 0x000000B3;

// Makes one of the two token calls under the lock. False if the pair's container is gone.
template <typename Call>
bool callToken(const Keypair *hKeypair, ULONG &rv, Call call) {
    const ProviderLock lock;
    const Container *hContainer = containerOf(hKeypair);
    if (!hContainer)
        return false;
    rv = call(hContainer->m_hContainer);
    return true;
}

int signRSA(const Keypair *hKeypair, const unsigned char *tbs, int tbslen, unsigned char *sign,
            int signlen, int *pretsignlen, const char *function) {
    const ULONG offered = static_cast<ULONG>(signlen);
    ULONG length = offered;
    ULONG rv = SAR_OK;
    if (!callToken(hKeypair, rv, [&](HCONTAINER hCon) {
            return SKF_RSASignData(hCon, skfInput(tbs), static_cast<ULONG>(tbslen), sign, &length);
        }))
        return fail(missingContainer(hKeypair), function);
    if (rv == SAR_USER_NOT_LOGGED_IN)
        return finish({TEMBRA_NOT_LOGGED_IN, "SKF_RSASignData fail,rv= SAR_USER_NOT_LOGGED_IN"},
                      function);
    if (rv != SAR_OK) {
        TEMBRA_TRACE(TraceLevel::error, function, "SKF_RSASignData fail, error = 0x%08X", rv);
        return TEMBRA_FAILURE;
    }
    if (length > offered)
        return failOverlong("SKF_RSASignData", length, offered, function);
    *pretsignlen = static_cast<int>(length);
    return TEMBRA_SUCCESS;
}

int copySignature(const ECCSIGNATUREBLOB &blob, unsigned char *sign, int signlen, int *pretsignlen,
                  const char *function) {
    HostBuffer out;
    const int result = OrvelPKICryptoEncodeECCSignature(&blob.r[SM2_INTEGER_AT], SM2_INTEGER_LEN,
                                                        &blob.s[SM2_INTEGER_AT], SM2_INTEGER_LEN,
                                                        out.data(), out.length());
    if (result != 1) {
        TEMBRA_TRACE(TraceLevel::error, function,
                     "OrvelPKICryptoEncodeECCSignature fail, error = %d", result);
        return TEMBRA_FAILURE;
    }
    if (out.size() == 0)
        return fail("OrvelPKICryptoEncodeECCSignature returned nothing", function);
    const int rv = copyOut(out.bytes(), *out.length(), sign, signlen, pretsignlen);
    if (rv != TEMBRA_SUCCESS)
        return finish({rv, "signlen < sm2SignValueLen, ORVEL_PKI_MOREDATA"}, function);
    TEMBRA_TRACE(TraceLevel::debug, function, "DeviceSign success");
    return rv;
}

int signSM2(const Keypair *hKeypair, const unsigned char *tbs, int tbslen, unsigned char *sign,
            int signlen, int *pretsignlen, const char *function) {
    ECCSIGNATUREBLOB blob = {};
    ULONG rv = SAR_OK;
    if (!callToken(hKeypair, rv, [&](HCONTAINER hCon) {
            return SKF_ECCSignData(hCon, skfInput(tbs), static_cast<ULONG>(tbslen), &blob);
        }))
        return fail(missingContainer(hKeypair), function);
    if (rv == SAR_USER_NOT_LOGGED_IN || rv == VENDOR_NOT_LOGGED_IN)
        return finish({TEMBRA_NOT_LOGGED_IN, " SKF_ECCSignData fail, rv == "
                                             "SAR_USER_NOT_LOGGED_IN || rv == 0x000000b3"},
                      function);
    if (rv != SAR_OK) {
        TEMBRA_TRACE(TraceLevel::error, function, "SKF_ECCSignData fail, error = 0x%08X", rv);
        return TEMBRA_FAILURE;
    }
    return copySignature(blob, sign, signlen, pretsignlen, function);
}

// The checks that size queries go through, too.
Outcome checkArguments(const Keypair *hKeypair, const unsigned char *tbs, int tbslen,
                       const int *pretsignlen) {
    if (!hKeypair)
        return {TEMBRA_NULL_HANDLE, "hKeypair == 0"};
    if (hKeypair->m_keytype != ORVEL_PKI_KEYPAIRTYPE_SIGNATURE)
        return {TEMBRA_BAD_ARGUMENT, "hKeypair->m_keytype != ORVEL_PKI_KEYPAIRTYPE_SIGNATURE"};
    if (!pretsignlen)
        return {TEMBRA_BAD_ARGUMENT, "pretsignlen == 0"};
    if (tbslen < 0)
        return {TEMBRA_BAD_ARGUMENT, "tbslen < 0"};
    if (tbslen == 0 && tbs)
        return {TEMBRA_BAD_ARGUMENT, "tbslen == 0 && tbs != 0"};
    return CONTINUE;
}

const char *wrongAlgorithm(const Keypair *hKeypair, int algo) {
    switch (hKeypair->m_algo) {
    case ORVEL_PKI_ALGORITHM_RSA:
        return algo == ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN
                   ? nullptr
                   : "algo != ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN";
    case ORVEL_PKI_ALGORITHM_ECC:
        return algo == ORVEL_PKI_ALGORITHM_SM2_SIGN ? nullptr
                                                    : "algo != ORVEL_PKI_ALGORITHM_SM2_SIGN";
    default: return "error algo";
    }
}

} // namespace

int DeviceSign(SPI_KEYPAIR_HANDLE hKeypair, int algo, const void *param, const unsigned char *tbs,
               int tbslen, unsigned char *sign, int signlen, int *pretsignlen) {
    const call_stack_tracer tracer("DeviceSign");
    TRACE_INFO("SPI_KEYPAIR_HANDLE hKeypair = %p, int algo = %d, const void *param = %p, "
               "const unsigned char *tbs = %p, int tbslen = %d, unsigned char *sign = %p, "
               "int signlen = %d, int *pretsignlen = %d",
               static_cast<void *>(hKeypair), algo, param, static_cast<const void *>(tbs), tbslen,
               static_cast<void *>(sign), signlen, shown(pretsignlen));
    const Outcome outcome = checkArguments(hKeypair, tbs, tbslen, pretsignlen);
    if (outcome.message)
        return finish(outcome, __func__);
    const bool isRsa = hKeypair->m_algo == ORVEL_PKI_ALGORITHM_RSA;
    if (!sign) {
        *pretsignlen = isRsa ? (hKeypair->m_keybits + 7) / 8 : SM2_SIGNATURE_BOUND;
        TRACE_DEBUG("DeviceSign success, sign == 0");
        return TEMBRA_SUCCESS;
    }
    const char *message = signlen <= 0 ? "signlen <= 0" : wrongAlgorithm(hKeypair, algo);
    if (message)
        return finish({TEMBRA_BAD_ARGUMENT, message}, __func__);
    return isRsa ? signRSA(hKeypair, tbs, tbslen, sign, signlen, pretsignlen, __func__)
                 : signSM2(hKeypair, tbs, tbslen, sign, signlen, pretsignlen, __func__);
}
