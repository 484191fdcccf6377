// Devices, public keys, buffers and random numbers.
#include "platform/orvel_crypto.h"

#include "arguments.h"
#include "blocks.h"
#include "crypto/public_key.h"
#include "crypto/random.h"
#include "fault_injection/call.h"

using namespace tembra;
using fault_injection::Call;
using host::Kind;

extern "C" {

void *OrvelPKICryptoGetPseudoDevice(void) {
    Call call(__func__);
    return call.answer<void *>(nullptr, [] { return host::newBlock(Kind::device, {}); });
}

int OrvelPKICryptoFreeDevice(void *device) {
    Call call(__func__);
    call.handle("device", device);
    return call.answer(0, [&] { return host::freeBlock(Kind::device, device); });
}

int OrvelPKICryptoFreeMemory(void *memory) {
    Call call(__func__);
    call.handle("memory", memory);
    return call.answer(0, [&] { return host::freeBlock(Kind::buffer, memory); });
}

int OrvelPKICryptoFreePublicKey(void *key) {
    Call call(__func__);
    call.handle("key", key);
    return call.answer(0, [&] { return host::freeBlock(Kind::publicKey, key); });
}

int OrvelPKICryptoGenerateRandom(void *device, int len, unsigned char *out) {
    Call call(__func__);
    call.handle("device", device).number("len", len).handle("out", out);
    return call.answer(0, [&] {
        if (!host::areValid({out}, {len}) || !host::isBlock(Kind::device, device))
            return 0;
        crypto::fillRandom({out, static_cast<std::size_t>(len)});
        return 1;
    });
}

int OrvelPKICryptoImportPublicKey(void *device, const unsigned char *key, int keyLen,
                                  void **publicKey) {
    Call call(__func__);
    const auto encoding = host::view(key, keyLen);
    call.handle("device", device).bytes("key", encoding.data(), encoding.size());
    return call.answer(0, [&] {
        if (!host::areValid({key, publicKey}, {keyLen}) || !host::isBlock(Kind::device, device))
            return 0;
        const auto decoded = crypto::decodePublicKey(encoding);
        if (!decoded || !crypto::isUsable(*decoded))
            return 0;
        *publicKey = host::newBlock(Kind::publicKey, encoding);
        call.outputs().handle("publicKey", *publicKey);
        return 1;
    });
}

} // extern "C"
