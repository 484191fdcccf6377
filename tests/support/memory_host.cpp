// The host library in memory: encodings that contain exactly the bytes passed in.
#include "scripted_token.h"

#include <algorithm>

tembra::test::MemoryHost::~MemoryHost() {
    for (const auto &[block, size] : blocks)
        delete[] static_cast<unsigned char *>(block);
}

namespace tembra::test::memory_token {
namespace {

MemoryHost &host() {
    return script().host;
}

int returnBlock(const Bytes &bytes, unsigned char **out, int *length) {
    auto *block = new unsigned char[bytes.size()];
    std::copy(bytes.begin(), bytes.end(), block);
    host().blocks[block] = bytes.size();
    *out = block;
    *length = static_cast<int>(bytes.size());
    return 1;
}

Bytes join(Bytes head, std::initializer_list<std::pair<const unsigned char *, int>> tails) {
    for (const auto &[bytes, length] : tails)
        head.insert(head.end(), bytes, bytes + length);
    return head;
}

int release(void *block) {
    if (host().blocks.erase(block) == 0) {
        ++host().foreignFrees;
        return 0;
    }
    delete[] static_cast<unsigned char *>(block);
    return 1;
}

} // namespace

void *OrvelPKICryptoGetPseudoDevice() {
    ++host().pseudoDevices;
    return &host();
}

int OrvelPKICryptoFreeDevice(void *device) {
    host().pseudoDevices -= device != nullptr;
    return 1;
}

int OrvelPKICryptoFreeMemory(void *memory) {
    return release(memory);
}

int OrvelPKICryptoFreePublicKey(void *key) {
    return release(key);
}

int OrvelPKICryptoGenerateRandom(void *, int length, unsigned char *out) {
    std::fill_n(out, length, static_cast<unsigned char>(0x77));
    return 1;
}

int OrvelPKICryptoEncodeRSAPubKey(const unsigned char *n, int nLen, const unsigned char *e,
                                  int eLen, unsigned char **out, int *outLen) {
    return returnBlock(join({'R', 'S', 'A'}, {{n, nLen}, {e, eLen}}), out, outLen);
}

int OrvelPKICryptoEncodeECCPubKey(int curve, const unsigned char *x, int xLen,
                                  const unsigned char *y, int yLen, unsigned char **out,
                                  int *outLen) {
    return returnBlock(
        join({'E', 'C', 'C', static_cast<unsigned char>(curve)}, {{x, xLen}, {y, yLen}}), out,
        outLen);
}

int OrvelPKICryptoDecodeRSAPubKey(const unsigned char *key, int keyLen, unsigned char **n,
                                  int *nLen, unsigned char **e, int *eLen) {
    return keyLen > 7 && returnBlock(Bytes(key + 3, key + keyLen - 4), n, nLen) &&
           returnBlock(Bytes(key + keyLen - 3, key + keyLen), e, eLen);
}

int OrvelPKICryptoDecodeECCPubKey(const unsigned char *key, int keyLen, int *curve,
                                  unsigned char **x, int *xLen, unsigned char **y, int *yLen) {
    if (keyLen != 68)
        return 0;
    *curve = key[3];
    return returnBlock(Bytes(key + 4, key + 36), x, xLen) &&
           returnBlock(Bytes(key + 36, key + 68), y, yLen);
}

int OrvelPKICryptoEncodeECCSignature(const unsigned char *r, int rLen, const unsigned char *s,
                                     int sLen, unsigned char **out, int *outLen) {
    return returnBlock(join({'S', 'I', 'G'}, {{r, rLen}, {s, sLen}}), out, outLen);
}

// After the 20 bytes of the header: x, y, d.
int OrvelPKICryptoDecodeECCKeyPair(const unsigned char *blob, int blobLen, int *curve,
                                   unsigned char **x, int *xLen, unsigned char **y, int *yLen,
                                   unsigned char **d, int *dLen) {
    if (blobLen != 116)
        return 0;
    *curve = 7;
    return returnBlock(Bytes(blob + 20, blob + 52), x, xLen) &&
           returnBlock(Bytes(blob + 52, blob + 84), y, yLen) &&
           returnBlock(Bytes(blob + 84, blob + 116), d, dLen);
}

int OrvelPKICryptoRSAPrivKeyToDER(const unsigned char *blob, int blobLen, unsigned char **der,
                                  int *derLen) {
    return blobLen > 20 && returnBlock(Bytes(blob + 20, blob + blobLen), der, derLen);
}

int OrvelPKICryptoImportPublicKey(void *, const unsigned char *key, int keyLen, void **publicKey) {
    int ignored = 0;
    unsigned char *block = nullptr;
    returnBlock(Bytes(key, key + keyLen), &block, &ignored);
    *publicKey = block;
    return 1;
}

// For SM2 the flat form 04, 64 bytes, the data, 32 bytes; otherwise the data after an 'E'.
int OrvelPKICryptoPublicKeyEncrypt(void *, int algo, const void *, const unsigned char *data,
                                   int dataLen, unsigned char **out, int *outLen) {
    if (algo != 0x40)
        return returnBlock(join({'E'}, {{data, dataLen}}), out, outLen);
    const Bytes point = coordinate(9);
    return returnBlock(join({0x04}, {{point.data(), 64}, {data, dataLen}, {point.data(), 32}}), out,
                       outLen);
}

} // namespace tembra::test::memory_token
