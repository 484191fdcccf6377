#include "pin_hash.h"

#include "gcrypt_handles.h"
#include "random.h"

namespace tembra::crypto {

namespace {

constexpr std::size_t SALT_SIZE = 16;
constexpr std::size_t HASH_SIZE = 32;
constexpr unsigned MAX_ITERATIONS = 10'000'000; // a damaged store must not hang its reader

Bytes derive(ByteView pin, ByteView salt, unsigned iterations) {
    initialiseGcrypt();
    Bytes out(HASH_SIZE);
    const char *text = pin.empty() ? "" : reinterpret_cast<const char *>(pin.data());
    check(gcry_kdf_derive(text, pin.size(), GCRY_KDF_PBKDF2, GCRY_MD_SHA256, salt.data(),
                          salt.size(), iterations, out.size(), out.data()),
          "PBKDF2");
    return out;
}

} // namespace

PinHash hashPin(ByteView pin, unsigned iterations) {
    PinHash stored{iterations, Bytes(SALT_SIZE), {}};
    fillRandom(stored.salt);
    stored.hash = derive(pin, stored.salt, iterations);
    return stored;
}

bool pinMatches(ByteView pin, const PinHash &stored) {
    if (stored.iterations == 0 || stored.iterations > MAX_ITERATIONS || stored.salt.empty() ||
        stored.hash.size() != HASH_SIZE)
        return false;
    return equalConstantTime(derive(pin, stored.salt, stored.iterations), stored.hash);
}

} // namespace tembra::crypto
