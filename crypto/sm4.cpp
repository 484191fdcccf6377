#include "sm4.h"

#include <algorithm>

#include "gcrypt_handles.h"

namespace tembra::crypto {

namespace {

using Cipher = Owner<gcry_cipher_hd_t, gcry_cipher_close>;

bool lengthsFit(Sm4Mode mode, ByteView key, ByteView iv) {
    return key.size() == SM4_KEY_SIZE && (mode == Sm4Mode::ecb || iv.size() == SM4_BLOCK_SIZE);
}

Cipher openCipher(Sm4Mode mode, ByteView key, ByteView iv) {
    initialiseGcrypt();
    gcry_cipher_hd_t handle = nullptr;
    const int number = mode == Sm4Mode::ecb ? GCRY_CIPHER_MODE_ECB : GCRY_CIPHER_MODE_CBC;
    check(gcry_cipher_open(&handle, GCRY_CIPHER_SM4, number, GCRY_CIPHER_SECURE), "SM4");
    Cipher cipher(handle);
    check(gcry_cipher_setkey(handle, key.data(), key.size()), "SM4 key");
    if (mode == Sm4Mode::cbc)
        check(gcry_cipher_setiv(handle, iv.data(), iv.size()), "SM4 IV");
    return cipher;
}

// Removes PKCS #7 padding; false if it is wrong.
bool removePadding(SecretBytes &plain) {
    if (plain.empty())
        return false;
    const std::size_t count = plain.back();
    if (count == 0 || count > SM4_BLOCK_SIZE)
        return false;
    const auto padding = std::span(plain).last(count);
    if (std::any_of(padding.begin(), padding.end(), [&](auto byte) { return byte != count; }))
        return false;
    plain.resize(plain.size() - count);
    return true;
}

} // namespace

std::optional<Bytes> sm4Encrypt(Sm4Mode mode, Sm4Padding padding, ByteView key, ByteView iv,
                                ByteView plain) {
    if (!lengthsFit(mode, key, iv))
        return std::nullopt;
    SecretBytes padded(plain.begin(), plain.end());
    if (padding == Sm4Padding::pkcs7) {
        const std::size_t count = SM4_BLOCK_SIZE - plain.size() % SM4_BLOCK_SIZE;
        padded.resize(plain.size() + count, static_cast<std::uint8_t>(count));
    }
    if (padded.size() % SM4_BLOCK_SIZE != 0)
        return std::nullopt;
    Bytes out(padded.size());
    if (!out.empty()) {
        const Cipher cipher = openCipher(mode, key, iv);
        check(
            gcry_cipher_encrypt(cipher.get(), out.data(), out.size(), padded.data(), padded.size()),
            "SM4");
    }
    return out;
}

std::optional<SecretBytes> sm4Decrypt(Sm4Mode mode, Sm4Padding padding, ByteView key, ByteView iv,
                                      ByteView cipherText) {
    if (!lengthsFit(mode, key, iv) || cipherText.size() % SM4_BLOCK_SIZE != 0)
        return std::nullopt;
    SecretBytes out(cipherText.size());
    if (!out.empty()) {
        const Cipher cipher = openCipher(mode, key, iv);
        check(gcry_cipher_decrypt(cipher.get(), out.data(), out.size(), cipherText.data(),
                                  cipherText.size()),
              "SM4");
    }
    if (padding == Sm4Padding::pkcs7 && !removePadding(out))
        return std::nullopt;
    return out;
}

std::optional<Sm4Block> sm4EncryptBlock(ByteView key, ByteView block) {
    const auto out = sm4Encrypt(Sm4Mode::ecb, Sm4Padding::none, key, {}, block);
    Sm4Block result{};
    if (!out || out->size() != result.size())
        return std::nullopt;
    std::copy(out->begin(), out->end(), result.begin());
    return result;
}

} // namespace tembra::crypto
