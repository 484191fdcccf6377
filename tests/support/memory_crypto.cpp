// The token in memory: predictable bytes instead of cryptography.
#include "scripted_token.h"

#include <algorithm>
#include <numeric>

namespace tembra::test::memory_token {
namespace {

constexpr unsigned char PLAINTEXT_MASK = 0x5A;

MemoryToken &token() {
    return script().memory;
}

Bytes masked(const BYTE *in, std::size_t length) {
    Bytes bytes(in, in + length);
    for (unsigned char &byte : bytes)
        byte = static_cast<unsigned char>(byte ^ PLAINTEXT_MASK);
    return bytes;
}

Bytes toyDecrypt(const Bytes &key, Bytes iv, const Bytes &cipher) {
    Bytes out(cipher.size());
    for (std::size_t at = 0; at + 16 <= cipher.size(); at += 16) {
        for (std::size_t i = 0; i < 16; ++i) {
            const int chained = cipher[at + 15 - i] ^ key[i];
            out[at + i] = static_cast<unsigned char>(chained ^ (iv.empty() ? 0 : iv[i]));
        }
        if (!iv.empty())
            std::copy_n(cipher.begin() + static_cast<std::ptrdiff_t>(at), 16, iv.begin());
    }
    return out;
}

ULONG startCipher(HANDLE key, const BLOCKCIPHERPARAM &parameter) {
    return with(token().find(key, HandleKind::key),
                [&](HandleModel &handle) { handle.cipher = parameter; });
}

template <typename Transform>
ULONG transform(HANDLE key, Transform apply, const BYTE *in, ULONG length, BYTE *out,
                ULONG *outLength) {
    return with(token().find(key, HandleKind::key), [&](HandleModel &handle) {
        const BLOCKCIPHERPARAM &parameter = handle.cipher;
        return length % 16 != 0
                   ? SAR_INDATALENERR
                   : giveBytes(apply(handle.key,
                                     Bytes(parameter.IV, parameter.IV + parameter.IVLen),
                                     Bytes(in, in + length)),
                               out, outLength);
    });
}

} // namespace

ULONG SKF_RSASignData(HCONTAINER container, BYTE *, ULONG, BYTE *signature, ULONG *length) {
    return with(token().container(container), [&](ContainerModel &model) {
        return giveBytes(Bytes(model.keyBits / 8, 0x33), signature, length);
    });
}

ULONG SKF_ECCSignData(HCONTAINER container, BYTE *data, ULONG length, ECCSIGNATUREBLOB *signature) {
    return with(token().container(container), [&](ContainerModel &) {
        if (data == nullptr && length != 0)
            return SAR_INVALIDPARAMERR;
        std::ranges::copy(coordinate(0x40), signature->r);
        std::ranges::copy(coordinate(0x80), signature->s);
        return SAR_OK;
    });
}

// The plaintext is the first 20 bytes of the ciphertext under the mask.
ULONG SKF_RSADecrypt(HCONTAINER container, BOOL, BYTE *in, ULONG inLength, BYTE *out,
                     ULONG *length) {
    return with(token().container(container), [&](ContainerModel &) {
        return giveBytes(masked(in, std::min<ULONG>(inLength, 20)), out, length);
    });
}

ULONG SKF_ECCDecrypt(HCONTAINER container, BOOL, ECCCIPHERBLOB *cipher, BYTE *out, ULONG *length) {
    return with(token().container(container), [&](ContainerModel &) {
        return giveBytes(masked(cipher->Cipher, cipher->CipherLen), out, length);
    });
}

// 1, 2, 3 ... in every call.
ULONG SKF_GenRandom(DEVHANDLE device, BYTE *out, ULONG length) {
    return with(token().device(device), [&](DeviceModel &) {
        if (out == nullptr)
            return SAR_INVALIDPARAMERR;
        std::iota(out, out + length, BYTE{1});
        return SAR_OK;
    });
}

ULONG SKF_DevAuth(DEVHANDLE device, BYTE *, ULONG) {
    return with(token().device(device), [](DeviceModel &) {});
}

ULONG SKF_SetSymmKey(DEVHANDLE device, BYTE *key, ULONG, HANDLE *handle) {
    return with(token().device(device), [&](DeviceModel &) {
        HandleModel *opened = token().create(HandleKind::key, {HandleKind::key});
        opened->key.assign(key, key + 16);
        *handle = opened;
    });
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
    return with(token().device(device), [digest](DeviceModel &) {
        *digest = token().create(HandleKind::digest, {HandleKind::digest});
    });
}

ULONG SKF_DigestUpdate(HANDLE digest, BYTE *data, ULONG length) {
    return with(token().find(digest, HandleKind::digest), [&](HandleModel &handle) {
        handle.digested.insert(handle.digested.end(), data, data + length);
    });
}

// The sum of the bytes fed, then counting.
ULONG SKF_DigestFinal(HANDLE digest, BYTE *value, ULONG *length) {
    return with(token().find(digest, HandleKind::digest), [&](HandleModel &handle) {
        Bytes bytes(32);
        std::iota(
            bytes.begin(), bytes.end(),
            std::accumulate(handle.digested.begin(), handle.digested.end(), BYTE{0},
                            [](BYTE sum, BYTE byte) { return static_cast<BYTE>(sum + byte); }));
        return giveBytes(bytes, value, length);
    });
}

ULONG SKF_CloseHandle(HANDLE handle) {
    HandleModel *key = token().find(handle, HandleKind::key);
    return with(key != nullptr ? key : token().find(handle, HandleKind::digest),
                [](HandleModel &model) { model.open = false; });
}

} // namespace tembra::test::memory_token
