// Block ciphers on the token, without padding. Every piece is a complete token operation; the
// provider carries the CBC chain from piece to piece and from call to call.
#include "log/hex.h"
#include "log/trace.h"
#include "platform/memory.h"
#include "platform/skf_arguments.h"
#include "provider/cipher_algorithms.h"
#include "provider/handle_list.h"
#include "provider/lock.h"
#include "provider/outcome.h"
#include "provider/records.h"
#include "provider/settings.h"

using namespace tembra;

namespace {

constexpr int KEY_LEN = 16;
constexpr ULONG IV_LEN = 16;

// The line shows this pointer as a number.
int lowBits(const void *pointer) {
    return static_cast<int>(reinterpret_cast<std::uintptr_t>(pointer));
}

// A record with its key imported, counted in the device's list, or null.
CipherContext *createCipher(Device *hDevice, int enc, int algo, const unsigned char *key,
                            const void *iv) {
    HANDLE hKey = nullptr;
    if (SKF_SetSymmKey(hDevice->m_hDev, skfInput(key), static_cast<ULONG>(skfCipherAlgorithm(algo)),
                       &hKey) != SAR_OK)
        return nullptr;
    auto *hCipher = allocateRecord<CipherContext>();
    if (!hCipher) {
        SKF_CloseHandle(hKey);
        return nullptr;
    }
    hCipher->m_device = hDevice;
    hCipher->m_handle = hKey;
    hCipher->m_enc = enc;
    if (isChained(algo)) {
        hCipher->m_chained = 1;
        std::memcpy(hCipher->m_iv, iv, IV_LEN);
    }
    if (!appendHandle(hDevice->m_ciphers, hDevice->m_cipherAllocCount, hDevice->m_cipherCount,
                      hCipher)) {
        SKF_CloseHandle(hKey);
        std::free(hCipher);
        return nullptr;
    }
    ++hDevice->m_refCount;
    return hCipher;
}

int failedCall(const char *call, ULONG rv, const char *function) {
    TEMBRA_TRACE(TraceLevel::error, function, "%s fail, error = 0x%08X", call, rv);
    return TEMBRA_FAILURE;
}

// One token operation over a piece; 1 or 0.
int transformPiece(const CipherContext *hCipher, const unsigned char *in, ULONG piece,
                   unsigned char *out, const char *function) {
    BLOCKCIPHERPARAM param = {};
    if (hCipher->m_chained) {
        std::memcpy(param.IV, hCipher->m_iv, IV_LEN);
        param.IVLen = IV_LEN;
    }
    ULONG partOutLen = piece;
    ULONG rv = SAR_OK;
    if (hCipher->m_enc) {
        rv = SKF_EncryptInit(hCipher->m_handle, param);
        if (rv != SAR_OK)
            return failedCall("SKF_EncryptInit", rv, function);
        rv = SKF_Encrypt(hCipher->m_handle, skfInput(in), piece, out, &partOutLen);
        if (rv != SAR_OK)
            return failedCall("SKF_Encrypt", rv, function);
    } else {
        rv = SKF_DecryptInit(hCipher->m_handle, param);
        if (rv != SAR_OK)
            return TEMBRA_FAILURE; // no line, unlike for encryption: part of the trace's
                                   // contract
        rv = SKF_Decrypt(hCipher->m_handle, skfInput(in), piece, out, &partOutLen);
        if (rv != SAR_OK)
            return failedCall("SKF_Decrypt", rv, function);
    }
    return partOutLen == piece ? TEMBRA_SUCCESS : fail("partOutLen != len", function);
}

// Shows two zeros for each byte, since the output must not reach the trace.
void traceOutput(int length, const char *function) {
    if (!traceEnabled(TraceLevel::verbose))
        return;
    const std::size_t digits = 2 * static_cast<std::size_t>(length);
    auto *text = static_cast<char *>(allocateZeroed(digits + 1));
    if (!text)
        return;
    std::memset(text, '0', digits);
    writeLog(traceTag(TraceLevel::verbose), function, "out[length:%d]: %s", length, text);
    std::free(text);
}

// The chain is the last 16 bytes of ciphertext so far, even if the last piece was shorter.
void advanceChain(CipherContext *hCipher, const unsigned char *ciphertext, ULONG length) {
    std::memmove(hCipher->m_iv, hCipher->m_iv + length, IV_LEN - length);
    std::memcpy(hCipher->m_iv + IV_LEN - length, ciphertext, length);
}

int cipherUpdate(CipherContext *hCipher, const unsigned char *in, int inlen, unsigned char *out,
                 int outlen, int *pretoutlen) {
    if (outlen < inlen)
        return fail("outlen < inlen", __func__);
    const ULONG total = static_cast<ULONG>(inlen);
    const ULONG limit = static_cast<ULONG>(g_maxOperationLen);
    ULONG done = 0;
    while (done < total) {
        const ULONG piece = limit != 0 && total - done > limit ? limit : total - done;
        const ULONG tail = piece < IV_LEN ? piece : IV_LEN;
        const bool isDecryptedChain = hCipher->m_chained && !hCipher->m_enc;
        unsigned char ciphertext[IV_LEN]; // out may be in
        if (isDecryptedChain)
            std::memcpy(ciphertext, in + done + piece - tail, tail);
        if (transformPiece(hCipher, in + done, piece, out + done, __func__) != TEMBRA_SUCCESS)
            return TEMBRA_FAILURE;
        done += piece;
        if (hCipher->m_chained)
            advanceChain(hCipher, isDecryptedChain ? ciphertext : out + done - tail, tail);
    }
    *pretoutlen = inlen;
    traceOutput(inlen, __func__);
    return TEMBRA_SUCCESS;
}

} // namespace

SPI_CIPHER_HANDLE DeviceNewCipher(SPI_DEVICE_HANDLE hDevice, int enc, int algo,
                                  const unsigned char *key, int keylen, const void *param) {
    const call_stack_tracer tracer("DeviceNewCipher");
    TRACE_INFO("hDevice = %p, int enc = %d, int algo = %d, const unsigned char *key = %p, "
               "int keylen = %d, const void *param = %p",
               static_cast<void *>(hDevice), enc, algo, static_cast<const void *>(key), keylen,
               param);
    if (!hDevice || skfCipherAlgorithm(algo) == -1 || !key || keylen != KEY_LEN)
        return nullptr;
    if (isChained(algo) && !param)
        return nullptr;
    const ProviderLock lock;
    return createCipher(hDevice, enc, algo, key, param);
}

int DeviceCipherUpdate(SPI_CIPHER_HANDLE hCipher, const unsigned char *in, int inlen,
                       unsigned char *out, int outlen, int *pretoutlen) {
    const call_stack_tracer tracer("DeviceCipherUpdate");
    TRACE_INFO("SPI_CIPHER_HANDLE hCipher = %p, const unsigned char *in = %p, int inlen = %d, "
               "unsigned char *out = %p, int outlen = %d, int *pretoutlen = %d",
               static_cast<void *>(hCipher), static_cast<const void *>(in), inlen,
               static_cast<void *>(out), outlen, lowBits(pretoutlen));
    {
        const HexText hex(in, inlen); // built also when the line is not written
        if (hex.text() && traceEnabled(TraceLevel::verbose))
            writeLog(traceTag(TraceLevel::verbose), __func__, "in[length:%d]: %s", inlen,
                     hex.text());
    }
    if (!hCipher)
        return TEMBRA_NULL_HANDLE;
    if (!pretoutlen || inlen < 0)
        return TEMBRA_BAD_ARGUMENT;
    *pretoutlen = inlen;
    if (inlen == 0)
        return !out || outlen >= 0 ? TEMBRA_SUCCESS : TEMBRA_BAD_ARGUMENT;
    if (!in)
        return TEMBRA_BAD_ARGUMENT;
    if (!out)
        return TEMBRA_SUCCESS;
    if (outlen < inlen)
        return ORVEL_PKI_MOREDATA;
    return cipherUpdate(hCipher, in, inlen, out, outlen, pretoutlen);
}

int DeviceFreeCipher(SPI_CIPHER_HANDLE hCipher) {
    const call_stack_tracer tracer("DeviceFreeCipher");
    TRACE_INFO("SPI_CIPHER_HANDLE hCipher = %p", static_cast<void *>(hCipher));
    if (!hCipher)
        return TEMBRA_SUCCESS;
    Device *hDevice = hCipher->m_device;
    removeHandle(hDevice->m_ciphers, hDevice->m_cipherCount, hCipher);
    closeAndFree(hCipher);
    DeviceFreeDevice(hDevice);
    return TEMBRA_SUCCESS;
}
