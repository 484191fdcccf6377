// Entry points, each in two forms: through the provider, and as the raw library calls that the
// provider makes.
#pragma once

#include "platform/orvel_crypto.h"
#include "platform/skf_arguments.h"
#include "session.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace tembra::bench {

inline constexpr int PIECE = 1024; // the default of MaxOperationLen

struct Sign : Session {                 // SM2, 32 bytes
    static constexpr bool locks = true; // whether the raw calls are made under the lock

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

    unsigned char digest[32] = {};
};

struct GenerateRandom : Session { // 32 bytes
    static constexpr bool locks = true;

    void raw() { SKF_GenRandom(nullptr, random, sizeof(random)); }
    void provider() { DeviceGenerateRandom(device, sizeof(random), random); }

    unsigned char random[32] = {};
};

// Finds the last of 64 key pairs and frees its handle; the raw form compares the labels.
struct FindKeypair : Session {
    static constexpr bool locks = true;

    FindKeypair() : Session(32) {
        for (int i = 0; i < 64; ++i)
            labels.push_back("container " + std::to_string(i / 2 + 100).substr(1));
    }

    void raw() {
        for (const std::string &label : labels)
            benchmark::DoNotOptimize(std::strcmp(label.c_str(), labels.back().c_str()));
    }
    void provider() {
        SPI_KEYPAIR_HANDLE found = nullptr;
        DeviceFindKeypair(device, ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, labels.back().c_str(), &found);
        DeviceFreeKeypair(found);
    }

    std::vector<std::string> labels;
};

struct HashUpdate : Session {
    static constexpr bool locks = false;

    explicit HashUpdate(int length) : data(static_cast<std::size_t>(length)) {}
    ~HashUpdate() { DeviceFreeHash(hash); }

    void raw() {
        for (std::size_t done = 0; done < data.size(); done += PIECE)
            SKF_DigestUpdate(nullptr, &data[done], PIECE);
    }
    void provider() { DeviceHashUpdate(hash, data.data(), static_cast<int>(data.size())); }

    std::vector<unsigned char> data;
    const SPI_HASH_HANDLE hash = DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3);
};

struct CipherUpdate : Session {
    static constexpr bool locks = false;
    static constexpr unsigned char KEY[16] = {};

    explicit CipherUpdate(int ofLength)
        : length(ofLength), data(static_cast<std::size_t>(length)) {}
    ~CipherUpdate() { DeviceFreeCipher(cipher); }

    void raw() {
        for (std::size_t done = 0; done < data.size(); done += PIECE) {
            ULONG pieceLength = PIECE;
            SKF_EncryptInit(nullptr, {});
            SKF_Encrypt(nullptr, &data[done], PIECE, &data[done], &pieceLength);
        }
    }
    void provider() {
        int outLength = 0;
        DeviceCipherUpdate(cipher, data.data(), length, data.data(), length, &outLength);
    }

    const int length;
    std::vector<unsigned char> data;
    const SPI_CIPHER_HANDLE cipher =
        DeviceNewCipher(device, 1, ORVEL_PKI_ALGORITHM_SMS4_CBC, KEY, sizeof(KEY), KEY);
};

// Makes a device set and frees it.
struct GetAllDevices : Session {
    static constexpr bool locks = true;

    explicit GetAllDevices(int containers) : Session(containers) {}

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
    void provider() { DeviceFreeDevices(DeviceGetAllDevices()); }
};

} // namespace tembra::bench
