#include "key_pair_blobs.h"

#include "scripted_token.h"

namespace tembra::test {
namespace {

void append(Bytes &bytes, const Bytes &more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void appendCounted(Bytes &bytes, const Bytes &more) {
    appendNumber(bytes, static_cast<std::uint32_t>(more.size()));
    append(bytes, more);
}

Bytes last(const Bytes &bytes, std::size_t count) {
    return Bytes(bytes.end() - static_cast<std::ptrdiff_t>(count), bytes.end());
}

Bytes enveloped(std::uint32_t algorithm, const Bytes &payload) {
    Bytes blob = {'S', 'C', 'A', 'E', 'N', 'C', 'K', 'P'};
    appendNumber(blob, 1);
    appendNumber(blob, algorithm);
    appendCounted(blob, payload);
    return blob;
}

Bytes point(const Bytes &x, const Bytes &y) {
    Bytes bytes = {4};
    append(bytes, x);
    append(bytes, y);
    return bytes;
}

} // namespace

Sm2Envelope::Sm2Envelope() : x(last(coordinate(1), 32)), y(last(coordinate(101), 32)) {}

Bytes Sm2Envelope::blob() const {
    Bytes payload;
    appendNumber(payload, curve);
    append(payload, point(x, y));
    appendNumber(payload, algorithm);
    appendNumber(payload, static_cast<std::uint32_t>(97 + c2.size()));
    append(payload, point(Bytes(32, 0x1A), Bytes(32, 0x1B)));
    append(payload, c2);
    append(payload, Bytes(32, 0x3C));
    append(payload, point(Bytes(32, 0x2A), Bytes(32, 0x2B)));
    appendCounted(payload, privateKey);
    return enveloped(4, payload);
}

RsaEnvelope::RsaEnvelope(int bits)
    : n(last(modulus(1), static_cast<std::size_t>(bits) / 8)), e({1, 0, 1}),
      wrappedKey(n.size(), 0xEE) {}

Bytes RsaEnvelope::blob() const {
    Bytes payload;
    appendCounted(payload, n);
    appendCounted(payload, e);
    appendNumber(payload, algorithm);
    appendCounted(payload, wrappedKey);
    appendCounted(payload, privateKey);
    return enveloped(1, payload);
}

Bytes plainSm2(const Bytes &d) {
    Bytes blob = {'_', 'K', 'E', 'Y', 'P', 'A', 'I', 'R'};
    appendNumber(blob, 4);
    appendNumber(blob, 7);
    appendNumber(blob, 32);
    append(blob, Bytes(32, 0x2A));
    append(blob, Bytes(32, 0x2B));
    append(blob, d);
    return blob;
}

Bytes plainRsa(int bits, const Bytes &der) {
    Bytes blob = {'_', 'K', 'E', 'Y', 'P', 'A', 'I', 'R'};
    appendNumber(blob, 1);
    appendNumber(blob, static_cast<std::uint32_t>(bits));
    appendNumber(blob, static_cast<std::uint32_t>(bits / 8));
    append(blob, der);
    return blob;
}

void putNumber(Bytes &blob, std::size_t at, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        blob.at(at++) = static_cast<unsigned char>(value >> shift);
}

void appendNumber(Bytes &blob, std::uint32_t value) {
    blob.resize(blob.size() + 4);
    putNumber(blob, blob.size() - 4, value);
}

void fixLength(Bytes &blob) {
    putNumber(blob, 16, static_cast<std::uint32_t>(blob.size() - 20));
}

void allowPlainRsa(int bits) {
    script().SKF_Encrypt.run([](HANDLE key, BYTE *in, ULONG length, BYTE *out, ULONG *outLength) {
        const HandleModel *handle = script().memory.find(key, HandleKind::key);
        if (handle == nullptr || handle->cipher.PaddingType != 1)
            return script().SKF_Encrypt.usual(key, in, length, out, outLength);
        const ULONG padding = 16 - length % 16;
        Bytes padded(in, in + length);
        padded.insert(padded.end(), padding, static_cast<unsigned char>(padding));
        return giveBytes(toyEncrypt(handle->key, {}, padded), out, outLength);
    });
    script().OrvelPKICryptoPublicKeyEncrypt.run([bits](void *key, int algo, const void *param,
                                                       const unsigned char *data, int dataLen,
                                                       unsigned char **out, int *outLen) {
        // Unless it is SM2, the host library in memory prepends one byte. The data is masked.
        Bytes block(data, data + dataLen);
        for (unsigned char &byte : block) {
            byte = static_cast<unsigned char>(byte ^ 0xFF);
        }
        block.resize(algo == 0x40 ? block.size() : static_cast<std::size_t>(bits / 8 - 1), 0xEE);
        return script().OrvelPKICryptoPublicKeyEncrypt.usual(
            key, algo, param, block.data(), static_cast<int>(block.size()), out, outLen);
    });
}

} // namespace tembra::test
