// Decryption with a private key on the token. It takes no lock, so that a slow token on one thread
// does not block the others.
#include "import/sm2_cipher.h"
#include "log/trace.h"
#include "platform/memory.h"
#include "platform/skf_arguments.h"
#include "provider/buffer.h"
#include "provider/keypair_table.h"
#include "provider/outcome.h"

#include <climits>
#include <cstring>

using namespace tembra;

namespace {

constexpr ULONG RSA_BUFFER_LEN = 512; // a 4096-bit modulus
constexpr ULONG VENDOR_RSA_NOT_LOGGED_IN = 0x00000003;

struct Output {
    unsigned char *clear;
    int clearlen;
    int *pretclearlen;
};

// The key flag of the token calls: 0 encryption key, 1 signature key.
BOOL keyFlag(const Keypair *hKeypair) {
    return hKeypair->m_keytype == ORVEL_PKI_KEYPAIRTYPE_ENCRYPT ? 0 : 1;
}

// plain has room for offered bytes, and the token reports length. If that exceeds the host's
// buffer, the host is told the length, even where the token had no room for so many.
int copyPlaintext(const char *call, const unsigned char *plain, ULONG length, ULONG offered,
                  const Output &out, const char *function) {
    if (length > INT_MAX || (length > offered && length <= static_cast<ULONG>(out.clearlen)))
        return failOverlong(call, length, offered, function);
    return copyOut(plain, static_cast<int>(length), out.clear, out.clearlen, out.pretclearlen);
}

// Whether the ciphertext has the flat form.
bool decodeSm2CipherText(const unsigned char *cipher, int cipherLen) {
    if (cipherLen < SM2_CIPHER_OVERHEAD) {
        TRACE_ERROR("cipherLen < 97");
        return false;
    }
    return cipher[0] == POINT_UNCOMPRESSED;
}

const char *wrongSm2Arguments(int algo, const void *param) {
    if (algo != ORVEL_PKI_ALGORITHM_SM2_ENC)
        return "algo != ORVEL_PKI_ALGORITHM_SM2_ENC";
    if (!param)
        return "param == 0";
    int hashAlgo = 0;
    std::memcpy(&hashAlgo, param, sizeof(hashAlgo));
    return hashAlgo == ORVEL_PKI_ALGORITHM_SM3 ? nullptr : "hashAlgo != ORVEL_PKI_ALGORITHM_SM3";
}

int decryptSM2(const Keypair *hKeypair, const unsigned char *cipher, int cipherlen,
               const Output &out, const char *function) {
    if (!decodeSm2CipherText(cipher, cipherlen))
        return fail("decodeSm2CipherText(cipher, cipherlen) == 0", function);
    const std::size_t cipherLen = static_cast<std::size_t>(cipherlen);
    const std::size_t messageLen = cipherLen - SM2_CIPHER_OVERHEAD;
    const SecretBlock block(sizeof(ECCCIPHERBLOB) + messageLen);
    if (!block.data())
        return fail("decodeSm2CipherText(cipher, cipherlen) == 0", function);
    auto *blob = reinterpret_cast<ECCCIPHERBLOB *>(block.data());
    fillCipherBlob(blob, cipher, cipherLen);

    const SecretBlock plain(messageLen);
    if (!plain.data())
        return fail("alloc memory fail", function);
    const Container *hContainer = containerOf(hKeypair);
    if (!hContainer)
        return fail(missingContainer(hKeypair), function);
    const ULONG offered = static_cast<ULONG>(messageLen);
    ULONG length = offered;
    const ULONG rv =
        SKF_ECCDecrypt(hContainer->m_hContainer, keyFlag(hKeypair), blob, plain.data(), &length);
    if (rv == SAR_USER_NOT_LOGGED_IN)
        return TEMBRA_NOT_LOGGED_IN;
    if (rv != SAR_OK) {
        TEMBRA_TRACE(TraceLevel::error, function, "SKF_ECCPrvKeyDecrypt fail, error = 0x%08x", rv);
        return TEMBRA_FAILURE;
    }
    return copyPlaintext("SKF_ECCDecrypt", plain.data(), length, offered, out, function);
}

int decryptRSA(const Keypair *hKeypair, const unsigned char *cipher, int cipherlen,
               const Output &out, const char *function) {
    const Container *hContainer = containerOf(hKeypair);
    if (!hContainer)
        return fail(missingContainer(hKeypair), function);
    SecretArray<RSA_BUFFER_LEN> plain;
    ULONG length = RSA_BUFFER_LEN;
    const ULONG rv = SKF_RSADecrypt(hContainer->m_hContainer, keyFlag(hKeypair), skfInput(cipher),
                                    static_cast<ULONG>(cipherlen), plain.data(), &length);
    if (rv == SAR_USER_NOT_LOGGED_IN || rv == VENDOR_RSA_NOT_LOGGED_IN)
        return TEMBRA_NOT_LOGGED_IN;
    if (rv != SAR_OK) {
        TEMBRA_TRACE(TraceLevel::error, function, "SKF_RSADecrypt fail, error = 0x%08x", rv);
        return TEMBRA_FAILURE;
    }
    return copyPlaintext("SKF_RSADecrypt", plain.data(), length, RSA_BUFFER_LEN, out, function);
}

} // namespace

int DevicePrivateKeyDecrypt(SPI_KEYPAIR_HANDLE hKeypair, int algo, const void *param,
                            const unsigned char *cipher, int cipherlen, unsigned char *clear,
                            int clearlen, int *pretclearlen) {
    const call_stack_tracer tracer("DevicePrivateKeyDecrypt");
    TRACE_INFO("SPI_KEYPAIR_HANDLE hKeypair = %p, int algo = %d, const void *param = %p, "
               "const unsigned char *cipher = %p, int cipherlen = %d, unsigned char *clear = %p, "
               "int clearlen = %d, int *pretclearlen = %d",
               static_cast<void *>(hKeypair), algo, param, static_cast<const void *>(cipher),
               cipherlen, static_cast<void *>(clear), clearlen, shown(pretclearlen));
    if (!hKeypair)
        return TEMBRA_NULL_HANDLE;
    if (!cipher || cipherlen < 1 || !pretclearlen)
        return TEMBRA_BAD_ARGUMENT;
    if (!clear) {
        *pretclearlen = cipherlen;
        return TEMBRA_SUCCESS;
    }
    if (clearlen < 0)
        return TEMBRA_BAD_ARGUMENT;

    const Output out = {clear, clearlen, pretclearlen};
    switch (hKeypair->m_algo) {
    case ORVEL_PKI_ALGORITHM_ECC:
        if (const char *message = wrongSm2Arguments(algo, param))
            return fail(message, __func__);
        return decryptSM2(hKeypair, cipher, cipherlen, out, __func__);
    case ORVEL_PKI_ALGORITHM_RSA:
        if (algo != ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC)
            return fail("algo != ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC", __func__);
        return decryptRSA(hKeypair, cipher, cipherlen, out, __func__);
    default:
        TRACE_ERROR("unsupport hKeypair->m_algo, hKeypair->m_algo = %d", hKeypair->m_algo);
        return TEMBRA_FAILURE;
    }
}
