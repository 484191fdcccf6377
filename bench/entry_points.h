// Entry points, ready to be called again and again: by the provider, as the raw calls that they
// come to, and as the line that the provider writes of them at information.
#pragma once

#include "floor.h"
#include "platform/orvel_crypto.h"
#include "platform/skf_arguments.h"
#include "session.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace tembra::bench {

inline constexpr int PIECE = 1024; // MaxOperationLen, when no setting says otherwise

struct EntryPoint : Session {
    EntryPoint(std::string ofName, int traceStatements, bool takesLock, int containers = 1)
        : Session(containers), name(std::move(ofName)), statements(traceStatements),
          locks(takesLock) {}
    // Between batches, untimed: what the calls took.
    void giveBack() {}

    const std::string name;
    const int statements; // trace statements of a call that succeeds
    const bool locks;     // whether the raw call is made under the lock
};

struct Sign : EntryPoint {
    Sign() : EntryPoint("DeviceSign (SM2, 32 bytes)", 4, true) {}

    void raw() {
        ECCSIGNATUREBLOB blob = {};
        SKF_ECCSignData(nullptr, digest, sizeof(digest), &blob);
        unsigned char *out = nullptr;
        int outLength = 0;
        OrvelPKICryptoEncodeECCSignature(&blob.r[32], 32, &blob.s[32], 32, &out, &outLength);
        unsigned char signature[80];
        std::memcpy(signature, out, static_cast<std::size_t>(outLength));
        benchmark::DoNotOptimize(signature);
        OrvelPKICryptoFreeMemory(out);
    }
    void provider() { // in any number of threads
        unsigned char signature[80];
        int length = 72;
        DeviceSign(signKey, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, digest, sizeof(digest),
                   signature, sizeof(signature), &length);
    }
    void line() {
        writeFloorLine(FLOOR_HEAD
                       "[DeviceSign] SPI_KEYPAIR_HANDLE hKeypair = %p, int algo = %d, "
                       "const void *param = %p, const unsigned char *tbs = %p, int tbslen = %d, "
                       "unsigned char *sign = %p, int signlen = %d, int *pretsignlen = %d \n",
                       signKey, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, digest, 32, digest, 80, 72);
    }

    unsigned char digest[32] = {};
};

struct GenerateRandom : EntryPoint {
    GenerateRandom() : EntryPoint("DeviceGenerateRandom (32 bytes)", 3, true) {}

    void raw() { SKF_GenRandom(nullptr, random, sizeof(random)); }
    void provider() { DeviceGenerateRandom(device, sizeof(random), random); }
    void line() {
        writeFloorLine(FLOOR_HEAD "[DeviceGenerateRandom] hDevice = %p, int len = %d, "
                                  "unsigned char *rand = %p \n",
                       device, 32, random);
    }

    unsigned char random[32] = {};
};

struct FindKeypair : EntryPoint {
    FindKeypair()
        : EntryPoint("DeviceFindKeypair (the last of 64; raw: 64 comparisons)", 3, true, 32) {
        for (int i = 0; i < 64; ++i)
            labels.push_back("container " + std::to_string(i / 2 + 100).substr(1));
    }

    void raw() {
        for (const std::string &label : labels)
            benchmark::DoNotOptimize(std::strcmp(label.c_str(), labels.back().c_str()));
    }
    void provider() {
        found.push_back(nullptr);
        DeviceFindKeypair(device, ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, labels.back().c_str(),
                          &found.back());
    }
    void line() {
        writeFloorLine(FLOOR_HEAD "[DeviceFindKeypair] hDevice = %p, int type = %d, const char "
                                  "*label = %s, SPI_KEYPAIR_HANDLE *phKeypair = %p \n",
                       device, 1, labels.back().c_str(), &found);
    }
    void giveBack() { freeAll(found, DeviceFreeKeypair); }

    std::vector<std::string> labels;
    std::vector<SPI_KEYPAIR_HANDLE> found;
};

struct Update : EntryPoint {
    Update(const char *ofName, int traceStatements, int ofLength)
        : EntryPoint(std::string(ofName) + " (" + std::to_string(ofLength >> 10) + " KB)",
                     traceStatements, false),
          length(ofLength), data(static_cast<std::size_t>(length)) {}

    const int length;
    std::vector<unsigned char> data;
};

struct HashUpdate : Update {
    explicit HashUpdate(int ofLength) : Update("DeviceHashUpdate", 3, ofLength) {}
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

    const SPI_HASH_HANDLE hash = DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3);
};

struct CipherUpdate : Update {
    explicit CipherUpdate(int ofLength) : Update("DeviceCipherUpdate", 5, ofLength) {}
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

    static constexpr unsigned char KEY[16] = {};
    const SPI_CIPHER_HANDLE cipher =
        DeviceNewCipher(device, 1, ORVEL_PKI_ALGORITHM_SMS4_CBC, KEY, sizeof(KEY), KEY);
    int outLength = 0;
};

struct GetAllDevices : EntryPoint {
    // Of a container: two keys, with four statements of the key, two texts and one of the
    // certificate each.
    explicit GetAllDevices(int containers)
        : EntryPoint("DeviceGetAllDevices (" + std::to_string(containers) + " containers)",
                     9 + containers * 2 * 7, true, containers) {}

    void raw() {
        char names[4096];
        ULONG size = sizeof(names);
        void *handle = nullptr;
        DEVINFO info;
        SKF_EnumDev(1, names, &size);
        SKF_ConnectDev(names, &handle);
        SKF_LockDev(handle, 0xFFFFFFFF);
        SKF_GetDevInfo(handle, &info);
        SKF_EnumApplication(handle, names, &size);
        SKF_OpenApplication(handle, names, &handle);
        SKF_ClearSecureState(handle);
        SKF_EnumContainer(handle, names, &size);
        for (const char *next = names; *next != '\0'; next += std::strlen(next) + 1) {
            SKF_OpenContainer(handle, skfInput(next), &handle);
            SKF_GetContainerType(handle, &size);
            for (const int isSignature : {1, 0}) {
                ECCPUBLICKEYBLOB key = {};
                BYTE certificate[600];
                SKF_ExportPublicKey(handle, isSignature, reinterpret_cast<BYTE *>(&key), &size);
                SKF_ExportCertificate(handle, isSignature, nullptr, &size);
                SKF_ExportCertificate(handle, isSignature, certificate, &size);
            }
        }
        SKF_UnlockDev(handle);
    }
    void provider() { sets.push_back(DeviceGetAllDevices()); }
    void line() {} // a discovery that succeeds writes none
    void giveBack() { freeAll(sets, DeviceFreeDevices); }

    std::vector<SPI_DEVICESET_HANDLE> sets;
};

} // namespace tembra::bench
