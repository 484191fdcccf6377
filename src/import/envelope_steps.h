// Steps of enveloping common to SM2 and RSA.
#pragma once

#include "import/blob.h"
#include "import/host_buffer.h"
#include "platform/memory.h"
#include "provider/records.h"

namespace tembra {

inline constexpr int SYMMETRIC_KEY_LEN = 16;

// A random key for the first algorithm that the token has, always in ECB mode.
struct SymmetricKey {
    int hostAlgo = 0;
    SecretArray<SYMMETRIC_KEY_LEN> key;

    // False if the token has none of SM1, SSF33 and SMS4, or no random numbers are to be had.
    bool draw(const Device *hDevice);
};

// Encrypts on the token, with PKCS #7 padding if padded. out has room for capacity bytes and
// *outLen receives the length. False on failure.
bool encryptOnToken(const Device *hDevice, const SymmetricKey &key, bool padded,
                    const unsigned char *data, std::size_t dataLen, unsigned char *out,
                    std::size_t capacity, std::size_t *outLen);

// Encrypts the symmetric key to a public key in the host's encoding; algo and param are those of
// OrvelPKICryptoPublicKeyEncrypt. False on failure.
bool wrapKey(const HostBuffer &publicKey, int algo, const void *param, const SymmetricKey &key,
             HostBuffer &wrapped);

// Writes the 20 bytes before the payload.
void writeHeader(BlobWriter &out, int algo, std::size_t payloadLen);

// Envelope a plain key pair for a container; the form of the blob depends on the algorithm.
int envelopeSM2(const Device *hDevice, const Container *hContainer, const unsigned char *keyblob,
                int keybloblen, unsigned char **encblob, int *encbloblen);
int envelopeRSA(const Device *hDevice, const Container *hContainer, const unsigned char *keyblob,
                int keybloblen, unsigned char **encblob, int *encbloblen);

} // namespace tembra
