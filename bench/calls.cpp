#include "call_rows.h"
#include "platform/orvel_crypto.h"
#include "platform/skf_arguments.h"
#include "rows.h"
#include "session.h"

#include <cstring>

namespace tembra::bench {

namespace {

constexpr int PIECE = 1024; // MaxOperationLen, when no setting says otherwise
constexpr CallMarks SILENT_AND_TRACED = {.silent = 1.10, .traced = 1.15, .bareWrite = 1.60};

void *handle() {
    void *key = nullptr;
    SKF_SetSymmKey(nullptr, nullptr, 0, &key);
    return key;
}

void measureSign(benchmark::State &state) {
    Session session;
    static unsigned char digest[32];
    static unsigned char signature[80];
    int length = sizeof(signature);
    const auto raw = [container = handle()] {
        ECCSIGNATUREBLOB blob = {};
        SKF_ECCSignData(container, digest, sizeof(digest), &blob);
        unsigned char *out = nullptr;
        int outLength = 0;
        OrvelPKICryptoEncodeECCSignature(&blob.r[32], 32, &blob.s[32], 32, &out, &outLength);
        std::memcpy(signature, out, static_cast<std::size_t>(outLength));
        OrvelPKICryptoFreeMemory(out);
    };
    const auto provider = [key = session.signKey, &length] {
        DeviceSign(key, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, digest, sizeof(digest), signature,
                   sizeof(signature), &length);
    };
    const auto line = [key = session.signKey, &length] {
        writeFloorLine(
            FLOOR_HEAD "[DeviceSign] SPI_KEYPAIR_HANDLE hKeypair = %p, int algo = %d, "
                       "const void *param = %p, const unsigned char *tbs = %p, int tbslen = %d, "
                       "unsigned char *sign = %p, int signlen = %d, int *pretsignlen = %d \n",
            static_cast<void *>(key), ORVEL_PKI_ALGORITHM_SM2_SIGN, static_cast<void *>(nullptr),
            static_cast<void *>(digest), 32, static_cast<void *>(signature), 80, length);
    };
    provider(); // length is from now on what it is in every line
    measureCall(state, Call{"DeviceSign (SM2, 32 bytes)", raw, provider, 4, true},
                SILENT_AND_TRACED, line);
}

void measureRandom(benchmark::State &state) {
    Session session;
    static unsigned char random[32];
    const auto raw = [device = handle()] { SKF_GenRandom(device, random, sizeof(random)); };
    const auto provider = [device = session.device] {
        DeviceGenerateRandom(device, sizeof(random), random);
    };
    const auto line = [device = session.device] {
        writeFloorLine(FLOOR_HEAD "[DeviceGenerateRandom] hDevice = %p, int len = %d, "
                                  "unsigned char *rand = %p \n",
                       static_cast<void *>(device), 32, static_cast<void *>(random));
    };
    measureCall(state, Call{"DeviceGenerateRandom (32 bytes)", raw, provider, 3, true},
                {.traced = 1.15, .bareWrite = 1.60}, line);
}

void measureHashUpdate(benchmark::State &state, const std::string &size, int length,
                       const CallMarks &marks) {
    Session session;
    const std::vector<unsigned char> data(static_cast<std::size_t>(length));
    const SPI_HASH_HANDLE hash = DeviceNewHash(session.device, ORVEL_PKI_ALGORITHM_SM3);
    const auto raw = [token = handle(), &data, length] {
        for (int done = 0; done < length; done += PIECE)
            SKF_DigestUpdate(token, skfInput(&data[static_cast<std::size_t>(done)]), PIECE);
    };
    const auto provider = [hash, &data, length] { DeviceHashUpdate(hash, data.data(), length); };
    const auto line = [hash, &data, length] {
        writeFloorLine(FLOOR_HEAD "[DeviceHashUpdate] SPI_HASH_HANDLE hHash = %p, "
                                  "const unsigned char *data = %p, int datalen = %d \n",
                       static_cast<void *>(hash), static_cast<const void *>(data.data()), length);
    };
    measureCall(state, Call{"DeviceHashUpdate (" + size + ")", raw, provider, 3, false}, marks,
                line);
    setLevel("0");
    DeviceFreeHash(hash);
}

void measureCipherUpdate(benchmark::State &state, const std::string &size, int length) {
    Session session;
    std::vector<unsigned char> data(static_cast<std::size_t>(length));
    const unsigned char key[16] = {};
    const SPI_CIPHER_HANDLE cipher =
        DeviceNewCipher(session.device, 1, ORVEL_PKI_ALGORITHM_SMS4_CBC, key, sizeof(key), key);
    int outLength = 0;
    const auto raw = [token = handle(), &data, length] {
        for (int done = 0; done < length; done += PIECE) {
            unsigned char *piece = &data[static_cast<std::size_t>(done)];
            ULONG pieceLength = PIECE;
            SKF_EncryptInit(token, {});
            SKF_Encrypt(token, piece, PIECE, piece, &pieceLength);
        }
    };
    const auto provider = [cipher, &data, length, &outLength] {
        DeviceCipherUpdate(cipher, data.data(), length, data.data(), length, &outLength);
    };
    const auto line = [cipher, &data, length, &outLength] {
        writeFloorLine(FLOOR_HEAD
                       "[DeviceCipherUpdate] SPI_CIPHER_HANDLE hCipher = %p, "
                       "const unsigned char *in = %p, int inlen = %d, unsigned char *out = %p, "
                       "int outlen = %d, int *pretoutlen = %p \n",
                       static_cast<void *>(cipher), static_cast<void *>(data.data()), length,
                       static_cast<void *>(data.data()), length, static_cast<void *>(&outLength));
    };
    measureCall(state, Call{"DeviceCipherUpdate (" + size + ")", raw, provider, 5, false}, {},
                line);
    setLevel("0");
    DeviceFreeCipher(cipher);
}

void measureFindKeypair(benchmark::State &state) {
    Session session(32);
    std::vector<std::string> labels;
    for (int i = 0; i < 64; ++i)
        labels.push_back("container " + std::to_string(i / 2 + 100).substr(1));
    const std::string &wanted = labels.back(); // the worst place
    std::vector<SPI_KEYPAIR_HANDLE> found;
    const auto raw = [&labels, &wanted] {
        [[maybe_unused]] volatile bool equal = false;
        for (const std::string &label : labels)
            equal = std::strcmp(label.c_str(), wanted.c_str()) == 0;
    };
    const auto provider = [device = session.device, &wanted, &found] {
        SPI_KEYPAIR_HANDLE key = nullptr;
        DeviceFindKeypair(device, ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, wanted.c_str(), &key);
        found.push_back(key);
    };
    const auto line = [device = session.device, &wanted, key = SPI_KEYPAIR_HANDLE{}] {
        writeFloorLine(FLOOR_HEAD "[DeviceFindKeypair] hDevice = %p, int type = %d, const char "
                                  "*label = %s, SPI_KEYPAIR_HANDLE *phKeypair = %p \n",
                       static_cast<void *>(device), 1, wanted.c_str(),
                       static_cast<const void *>(&key));
    };
    const auto giveBack = [&found] {
        setLevel("0");
        for (const SPI_KEYPAIR_HANDLE key : found)
            DeviceFreeKeypair(key);
        found.clear();
    };
    measureCall(state,
                Call{"DeviceFindKeypair (the last of 64; raw: 64 comparisons)", raw, provider, 3,
                     true, giveBack},
                {.traced = 1.15, .bareWrite = 1.60}, line);
}

void discoverRaw() {
    char names[4096];
    ULONG size = sizeof(names);
    void *device = nullptr;
    void *application = nullptr;
    DEVINFO info;
    SKF_EnumDev(1, names, &size);
    SKF_ConnectDev(names, &device);
    SKF_LockDev(device, 0xFFFFFFFF);
    SKF_GetDevInfo(device, &info);
    SKF_EnumApplication(device, names, &size);
    SKF_OpenApplication(device, names, &application);
    SKF_ClearSecureState(application);
    SKF_EnumContainer(application, names, &size);
    for (const char *name = names; *name != '\0'; name += std::strlen(name) + 1) {
        void *container = nullptr;
        ULONG type = 0;
        SKF_OpenContainer(application, skfInput(name), &container);
        SKF_GetContainerType(container, &type);
        for (const int signKey : {1, 0}) {
            ECCPUBLICKEYBLOB key = {};
            BYTE certificate[600];
            SKF_ExportPublicKey(container, signKey, reinterpret_cast<BYTE *>(&key), &size);
            SKF_ExportCertificate(container, signKey, nullptr, &size);
            SKF_ExportCertificate(container, signKey, certificate, &size);
        }
    }
    SKF_UnlockDev(device);
}

void measureDiscovery(benchmark::State &state, int containers) {
    Session session(containers);
    std::vector<SPI_DEVICESET_HANDLE> sets;
    const auto provider = [&sets] { sets.push_back(DeviceGetAllDevices()); };
    const auto giveBack = [&sets] {
        setLevel("0");
        for (const SPI_DEVICESET_HANDLE set : sets)
            DeviceFreeDevices(set);
        sets.clear();
    };
    // Each container's keys: four statements of the key, two or three texts, one of the
    // certificate.
    const int statements = 9 + containers * 2 * 7;
    measureCall(state,
                Call{"DeviceGetAllDevices (" + std::to_string(containers) + " containers)",
                     &discoverRaw, provider, statements, true, giveBack},
                {}, [] {});
}

template <typename Row>
void add(const char *name, int rounds, Row row) {
    benchmark::RegisterBenchmark(name, row)->Iterations(rounds)->UseManualTime();
}

} // namespace

void registerCalls(int rounds) {
    add("sign", rounds, measureSign);
    add("random", rounds, measureRandom);
    add("find_keypair", rounds, measureFindKeypair);
    const struct {
        const char *text;
        int bytes;
        CallMarks marks;
    } sizes[] = {{"1 KB", 1 << 10, SILENT_AND_TRACED},
                 {"64 KB", 1 << 16, {}},
                 {"1 MB", 1 << 20, {.silent = 1.10}}};
    for (const auto &size : sizes)
        add((std::string("hash_update/") + size.text).c_str(), rounds,
            [size](benchmark::State &state) {
                measureHashUpdate(state, size.text, size.bytes, size.marks);
            });
    for (const auto &size : sizes)
        add((std::string("cipher_update/") + size.text).c_str(), rounds,
            [size](benchmark::State &state) { measureCipherUpdate(state, size.text, size.bytes); });
    for (const int containers : {1, 32})
        add(("discovery/" + std::to_string(containers)).c_str(), rounds,
            [containers](benchmark::State &state) { measureDiscovery(state, containers); });
}

} // namespace tembra::bench
