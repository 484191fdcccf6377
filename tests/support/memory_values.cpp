// The predictable values of the token in memory.
#include "memory_token.h"

#include <algorithm>

namespace tembra::test {
namespace {

Bytes counting(unsigned char seed, std::size_t size) {
    Bytes bytes(size);
    for (unsigned char &byte : bytes)
        byte = seed++;
    return bytes;
}

void append(Bytes &bytes, const Bytes &more, std::size_t last) {
    bytes.insert(bytes.end(), more.end() - static_cast<std::ptrdiff_t>(last), more.end());
}

template <std::size_t Size>
void setText(char (&field)[Size], const std::string &text) {
    std::copy_n(text.begin(), std::min(Size, text.size()), field);
}

} // namespace

ContainerModel ecc(const std::string &name, bool sign, bool encrypt) {
    return {name, CONTAINER_TYPE_ECC, 256, sign, encrypt, {}, {}};
}

ContainerModel rsa(const std::string &name, ULONG bits, bool sign, bool encrypt) {
    return {name, CONTAINER_TYPE_RSA, bits, sign, encrypt, {}, {}};
}

Bytes coordinate(unsigned char seed) {
    return counting(seed, ECC_MAX_COORDINATE_LEN);
}

Bytes modulus(unsigned char seed) {
    return counting(seed, MAX_RSA_MODULUS_LEN);
}

Bytes encodedEccKey(bool sign) {
    Bytes key = {'E', 'C', 'C', 7};
    append(key, coordinate(sign ? 1 : 51), 32);
    append(key, coordinate(sign ? 101 : 151), 32);
    return key;
}

Bytes encodedRsaKey(bool sign, int bits) {
    Bytes key = {'R', 'S', 'A'};
    append(key, modulus(sign ? 1 : 51), static_cast<std::size_t>(bits) / 8);
    append(key, {0, 1, 0, 1}, 4);
    return key;
}

Bytes encodedSignature() {
    Bytes signature = {'S', 'I', 'G'};
    append(signature, coordinate(0x40), 32);
    append(signature, coordinate(0x80), 32);
    return signature;
}

// Each block is combined with the previous one and the key by exclusive or, and reversed.
Bytes toyEncrypt(const Bytes &key, Bytes iv, const Bytes &plain) {
    Bytes out(plain.size());
    for (std::size_t at = 0; at + 16 <= plain.size(); at += 16) {
        for (std::size_t i = 0; i < 16; ++i) {
            const int chained = plain[at + i] ^ (iv.empty() ? 0 : iv[i]);
            out[at + 15 - i] = static_cast<unsigned char>(chained ^ key[i]);
        }
        if (!iv.empty())
            std::copy_n(out.begin() + static_cast<std::ptrdiff_t>(at), 16, iv.begin());
    }
    return out;
}

ULONG giveBytes(const Bytes &bytes, BYTE *out, ULONG *length) {
    const ULONG capacity = *length;
    *length = static_cast<ULONG>(bytes.size());
    if (out == nullptr)
        return SAR_OK;
    if (capacity < bytes.size())
        return SAR_BUFFER_TOO_SMALL;
    std::copy(bytes.begin(), bytes.end(), out);
    return SAR_OK;
}

DeviceModel &MemoryToken::addDevice(const std::string &name) {
    DeviceModel &device = devices.emplace_back();
    device.name = name;
    device.info = DEVINFO{};
    setText(device.info.Manufacturer, "Tembra");
    setText(device.info.Issuer, "Test Issuer");
    setText(device.info.Label, "Test Token");
    setText(device.info.SerialNumber, "TEST-0123456789A");
    device.info.AlgSymCap = SGD_SM1_ECB | SGD_SM1_CBC | SGD_SMS4_ECB | SGD_SMS4_CBC;
    device.info.AlgAsymCap = SGD_RSA | SGD_SM2_1 | SGD_SM2_3;
    device.info.AlgHashCap = SGD_SM3;
    device.info.DevAuthAlgId = SGD_SMS4_ECB;
    return device;
}

} // namespace tembra::test
