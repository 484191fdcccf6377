// Updates of so much data, by the provider and as the raw calls that they come to.
#pragma once

#include "floor.h"
#include "platform/skf.h"
#include "session.h"

namespace tembra::bench {

class HashUpdate {
public:
    static constexpr const char *NAME = "DeviceHashUpdate";
    static constexpr int STATEMENTS = 3;

    HashUpdate(const Session &session, int ofLength)
        : length(ofLength), data(static_cast<std::size_t>(length)),
          hash(DeviceNewHash(session.device, ORVEL_PKI_ALGORITHM_SM3)) {}
    ~HashUpdate() { DeviceFreeHash(hash); }

    void raw() {
        for (int done = 0; done < length; done += PIECE)
            SKF_DigestUpdate(nullptr, &data[static_cast<std::size_t>(done)], PIECE);
    }
    void provider() { DeviceHashUpdate(hash, data.data(), length); }
    void line() {
        writeFloorLine(FLOOR_HEAD "[DeviceHashUpdate] SPI_HASH_HANDLE hHash = %p, "
                                  "const unsigned char *data = %p, int datalen = %d \n",
                       hash, data.data(), length);
    }

private:
    const int length;
    std::vector<unsigned char> data;
    SPI_HASH_HANDLE hash;
};

class CipherUpdate {
public:
    static constexpr const char *NAME = "DeviceCipherUpdate";
    static constexpr int STATEMENTS = 5;

    CipherUpdate(const Session &session, int ofLength)
        : length(ofLength), data(static_cast<std::size_t>(length)),
          cipher(DeviceNewCipher(session.device, 1, ORVEL_PKI_ALGORITHM_SMS4_CBC, KEY, sizeof(KEY),
                                 KEY)) {}
    ~CipherUpdate() { DeviceFreeCipher(cipher); }

    void raw() {
        for (int done = 0; done < length; done += PIECE) {
            unsigned char *piece = &data[static_cast<std::size_t>(done)];
            ULONG pieceLength = PIECE;
            SKF_EncryptInit(nullptr, {});
            SKF_Encrypt(nullptr, piece, PIECE, piece, &pieceLength);
        }
    }
    void provider() {
        DeviceCipherUpdate(cipher, data.data(), length, data.data(), length, &outLength);
    }
    void line() {
        writeFloorLine(FLOOR_HEAD
                       "[DeviceCipherUpdate] SPI_CIPHER_HANDLE hCipher = %p, "
                       "const unsigned char *in = %p, int inlen = %d, unsigned char *out = %p, "
                       "int outlen = %d, int *pretoutlen = %p \n",
                       cipher, data.data(), length, data.data(), length, &outLength);
    }

private:
    static constexpr unsigned char KEY[16] = {};

    const int length;
    std::vector<unsigned char> data;
    SPI_CIPHER_HANDLE cipher;
    int outLength = 0;
};

} // namespace tembra::bench
