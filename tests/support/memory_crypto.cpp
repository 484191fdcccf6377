// The token in memory: what stands for its cryptography. No secrets, no standards, only bytes that
// a test can foresee.
#include "scripted_token.h"

#include <algorithm>

namespace tembra::test::memory_token {
namespace {

constexpr unsigned char plaintextMask = 0x5A;

MemoryToken &token() {
    return script().memory;
}

Bytes masked(const BYTE *in, std::size_t length) {
    Bytes bytes(in, in + length);
    for (unsigned char &byte : bytes) {
        byte = static_cast<unsigned char>(byte ^ plaintextMask);
    }
    return bytes;
}

Bytes toyDecrypt(const Bytes &key, Bytes iv, const Bytes &cipher) {
    Bytes out(cipher.size());
    for (std::size_t at = 0; at + 16 <= cipher.size(); at += 16) {
        for (std::size_t i = 0; i < 16; ++i) {
            const int chained = cipher[at + 15 - i] ^ key[i];
            out[at + i] = static_cast<unsigned char>(chained ^ (iv.empty() ? 0 : iv[i]));
        }
        if (!iv.empty()) {
            std::copy_n(cipher.begin() + static_cast<std::ptrdiff_t>(at), 16, iv.begin());
        }
    }
    return out;
}

ULONG startCipher(HANDLE key, const BLOCKCIPHERPARAM &parameter) {
    HandleModel *handle = token().find(key, HandleKind::key);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    handle->cipher = parameter;
    return SAR_OK;
}

template <typename Transform>
ULONG transform(HANDLE key, Transform apply, const BYTE *in, ULONG length, BYTE *out,
                ULONG *outLength) {
    HandleModel *handle = token().find(key, HandleKind::key);
    if (handle == nullptr || length % 16 != 0) {
        return handle ? SAR_INDATALENERR : SAR_INVALIDHANDLEERR;
    }
    const BLOCKCIPHERPARAM &parameter = handle->cipher;
    return giveBytes(apply(handle->key, Bytes(parameter.IV, parameter.IV + parameter.IVLen),
                           Bytes(in, in + length)),
                     out, outLength);
}

} // namespace

ULONG SKF_RSASignData(HCONTAINER container, BYTE *, ULONG, BYTE *signature, ULONG *length) {
    HandleModel *handle = token().find(container, HandleKind::container);
    return handle ? giveBytes(Bytes(handle->container->keyBits / 8, 0x33), signature, length)
                  : SAR_INVALIDHANDLEERR;
}

ULONG SKF_ECCSignData(HCONTAINER container, BYTE *data, ULONG length, ECCSIGNATUREBLOB *signature) {
    if (token().find(container, HandleKind::container) == nullptr ||
        (data == nullptr && length != 0)) {
        return SAR_INVALIDPARAMERR;
    }
    const Bytes r = coordinate(0x40);
    const Bytes s = coordinate(0x80);
    std::copy(r.begin(), r.end(), signature->r);
    std::copy(s.begin(), s.end(), signature->s);
    return SAR_OK;
}

// The plaintext is the first 20 bytes of the ciphertext under the mask.
ULONG SKF_RSADecrypt(HCONTAINER container, BOOL, BYTE *in, ULONG inLength, BYTE *out,
                     ULONG *length) {
    return token().find(container, HandleKind::container)
               ? giveBytes(masked(in, std::min<ULONG>(inLength, 20)), out, length)
               : SAR_INVALIDHANDLEERR;
}

ULONG SKF_ECCDecrypt(HCONTAINER container, BOOL, ECCCIPHERBLOB *cipher, BYTE *out, ULONG *length) {
    return token().find(container, HandleKind::container)
               ? giveBytes(masked(cipher->Cipher, cipher->CipherLen), out, length)
               : SAR_INVALIDHANDLEERR;
}

// 1, 2, 3 ... in every call.
ULONG SKF_GenRandom(DEVHANDLE device, BYTE *out, ULONG length) {
    if (token().find(device, HandleKind::device) == nullptr || out == nullptr) {
        return SAR_INVALIDPARAMERR;
    }
    for (ULONG i = 0; i < length; ++i) {
        out[i] = static_cast<BYTE>(i + 1);
    }
    return SAR_OK;
}

ULONG SKF_DevAuth(DEVHANDLE device, BYTE *, ULONG) {
    return token().find(device, HandleKind::device) ? SAR_OK : SAR_INVALIDHANDLEERR;
}

ULONG SKF_SetSymmKey(DEVHANDLE device, BYTE *key, ULONG, HANDLE *handle) {
    if (token().find(device, HandleKind::device) == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    HandleModel *opened = token().create(HandleKind::key, {HandleKind::key});
    opened->key.assign(key, key + 16);
    *handle = opened;
    return SAR_OK;
}

ULONG SKF_EncryptInit(HANDLE key, BLOCKCIPHERPARAM parameter) {
    return startCipher(key, parameter);
}

ULONG SKF_Encrypt(HANDLE key, BYTE *in, ULONG length, BYTE *out, ULONG *outLength) {
    return transform(key, toyEncrypt, in, length, out, outLength);
}

ULONG SKF_DecryptInit(HANDLE key, BLOCKCIPHERPARAM parameter) {
    return startCipher(key, parameter);
}

ULONG SKF_Decrypt(HANDLE key, BYTE *in, ULONG length, BYTE *out, ULONG *outLength) {
    return transform(key, toyDecrypt, in, length, out, outLength);
}

ULONG SKF_DigestInit(DEVHANDLE device, ULONG, ECCPUBLICKEYBLOB *, BYTE *, ULONG, HANDLE *digest) {
    if (token().find(device, HandleKind::device) == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    *digest = token().create(HandleKind::digest, {HandleKind::digest});
    return SAR_OK;
}

ULONG SKF_DigestUpdate(HANDLE digest, BYTE *data, ULONG length) {
    HandleModel *handle = token().find(digest, HandleKind::digest);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    handle->digested.insert(handle->digested.end(), data, data + length);
    return SAR_OK;
}

// The sum of the bytes fed, then counting.
ULONG SKF_DigestFinal(HANDLE digest, BYTE *value, ULONG *length) {
    HandleModel *handle = token().find(digest, HandleKind::digest);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    Bytes bytes(32);
    unsigned sum = 0;
    for (const unsigned char byte : handle->digested) {
        sum += byte;
    }
    for (unsigned char &byte : bytes) {
        byte = static_cast<unsigned char>(sum++);
    }
    return giveBytes(bytes, value, length);
}

ULONG SKF_CloseHandle(HANDLE handle) {
    for (const HandleKind kind : {HandleKind::key, HandleKind::digest}) {
        if (HandleModel *model = token().find(handle, kind)) {
            model->open = false;
            return SAR_OK;
        }
    }
    return SAR_INVALIDHANDLEERR;
}

} // namespace tembra::test::memory_token
