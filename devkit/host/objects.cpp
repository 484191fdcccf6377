// Devices, public keys and buffers: their making and their end.
#include "platform/orvel_crypto.h"

#include "arguments.h"
#include "crypto/public_key.h"
#include "crypto/random.h"
#include "fault_injection/call.h"

using namespace tembra;
using host::Kind;

namespace {

int release(Kind kind, void *block) {
    return host::takeBack(kind, block) ? 1 : 0;
}

} // namespace

extern "C" {

void *OrvelPKICryptoGetPseudoDevice(void) {
    door::Call call("OrvelPKICryptoGetPseudoDevice");
    return call.answer<void *>(nullptr, [] { return host::handOut(Kind::device, {}); });
}

int OrvelPKICryptoFreeDevice(void *device) {
    door::Call call("OrvelPKICryptoFreeDevice");
    call.handle("device", device);
    return call.answer<int>(0, [&] { return release(Kind::device, device); });
}

int OrvelPKICryptoFreeMemory(void *memory) {
    door::Call call("OrvelPKICryptoFreeMemory");
    call.handle("memory", memory);
    return call.answer<int>(0, [&] { return release(Kind::buffer, memory); });
}

int OrvelPKICryptoFreePublicKey(void *key) {
    door::Call call("OrvelPKICryptoFreePublicKey");
    call.handle("key", key);
    return call.answer<int>(0, [&] { return release(Kind::publicKey, key); });
}

int OrvelPKICryptoGenerateRandom(void *device, int len, unsigned char *out) {
    door::Call call("OrvelPKICryptoGenerateRandom");
    call.handle("device", device).number("len", len).handle("out", out);
    return call.answer<int>(0, [&] {
        if (!host::given({out}, {len}) || !host::isA(Kind::device, device))
            return 0;
        crypto::fillRandom({out, static_cast<std::size_t>(len)});
        return 1;
    });
}

int OrvelPKICryptoImportPublicKey(void *device, const unsigned char *key, int keyLen,
                                  void **publicKey) {
    door::Call call("OrvelPKICryptoImportPublicKey");
    const auto encoding = host::view(key, keyLen);
    call.handle("device", device).bytes("key", encoding.data(), encoding.size());
    return call.answer<int>(0, [&] {
        if (!host::given({key, publicKey}, {keyLen}) || !host::isA(Kind::device, device))
            return 0;
        const auto decoded = crypto::decodePublicKey(encoding);
        if (!decoded || !crypto::isUsable(*decoded))
            return 0;
        *publicKey = host::handOut(Kind::publicKey, encoding);
        call.outputs().handle("publicKey", *publicKey);
        return 1;
    });
}

} // extern "C"
