#include "call_rows.h"
#include "platform/orvel_crypto.h"
#include "platform/skf_arguments.h"
#include "rows.h"
#include "updates.h"

#include <cstring>

namespace tembra::bench {

namespace {

constexpr CallMarks SILENT_AND_TRACED = {.silent = 1.10, .traced = 1.15, .bareWrite = 1.60};
constexpr CallMarks TRACED = {.traced = 1.15, .bareWrite = 1.60};

void measureSign(benchmark::State &state) {
    Session session;
    static unsigned char digest[32];
    static unsigned char signature[80];
    int length = sizeof(signature);
    const auto raw = [] {
        ECCSIGNATUREBLOB blob = {};
        SKF_ECCSignData(nullptr, digest, sizeof(digest), &blob);
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
            key, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, digest, 32, signature, 80, length);
    };
    provider(); // length is from now on what it is in every line
    measureCall(state, {"DeviceSign (SM2, 32 bytes)", 4, true, SILENT_AND_TRACED}, raw, provider,
                line);
}

void measureRandom(benchmark::State &state) {
    Session session;
    static unsigned char random[32];
    const auto raw = [] { SKF_GenRandom(nullptr, random, sizeof(random)); };
    const auto provider = [device = session.device] {
        DeviceGenerateRandom(device, sizeof(random), random);
    };
    const auto line = [device = session.device] {
        writeFloorLine(FLOOR_HEAD "[DeviceGenerateRandom] hDevice = %p, int len = %d, "
                                  "unsigned char *rand = %p \n",
                       device, 32, random);
    };
    measureCall(state, {"DeviceGenerateRandom (32 bytes)", 3, true, TRACED}, raw, provider, line);
}

template <typename Update>
void measureUpdate(benchmark::State &state, const std::string &size, int length,
                   const CallMarks &marks) {
    Session session;
    Update update(session, length);
    measureCall(
        state, {Update::NAME + (" (" + size + ")"), Update::STATEMENTS, false, marks},
        [&update] { update.raw(); }, [&update] { update.provider(); },
        [&update] { update.line(); });
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
                       device, 1, wanted.c_str(), &key);
    };
    const auto giveBack = [&found] {
        setLevel("0");
        for (const SPI_KEYPAIR_HANDLE key : found)
            DeviceFreeKeypair(key);
        found.clear();
    };
    measureCall(
        state,
        {"DeviceFindKeypair (the last of 64; raw: 64 comparisons)", 3, true, TRACED, giveBack}, raw,
        provider, line);
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
                {"DeviceGetAllDevices (" + std::to_string(containers) + " containers)",
                 statements,
                 true,
                 {},
                 giveBack},
                &discoverRaw, provider, [] {});
}

// Large updates over a token that takes its time for every piece, silent.
template <typename Update>
void measurePieces(benchmark::State &state, const char *over, double mark, const NullToken &token) {
    Session session;
    nullToken = token;
    Update update(session, 1 << 20);
    Pairing pairing(state, std::string(Update::NAME) + " (1 MB) over a token " + over);
    const auto pieces = pairing.add({"raw pieces", repeat([&update] { update.raw(); })});
    const auto level0 = pairing.add({"level 0", repeat([&update] { update.provider(); })});
    pairing.compare(level0, pieces, mark);
    pairing.measure();
}

} // namespace

void registerCalls(int rounds) {
    add("sign", rounds, measureSign);
    add("random", rounds, measureRandom);
    add("find_keypair", rounds, measureFindKeypair);
    const struct {
        std::string text;
        int bytes;
        CallMarks marks;
    } sizes[] = {{"1 KB", 1 << 10, SILENT_AND_TRACED},
                 {"64 KB", 1 << 16, {}},
                 {"1 MB", 1 << 20, {.silent = 1.10}}};
    for (const auto &size : sizes)
        add("hash_update/" + size.text, rounds, [size](benchmark::State &state) {
            measureUpdate<HashUpdate>(state, size.text, size.bytes, size.marks);
        });
    for (const auto &size : sizes)
        add("cipher_update/" + size.text, rounds, [size](benchmark::State &state) {
            measureUpdate<CipherUpdate>(state, size.text, size.bytes, {});
        });
    for (const int containers : {1, 32})
        add("discovery/" + std::to_string(containers), rounds,
            [containers](benchmark::State &state) { measureDiscovery(state, containers); });
    add("pieces/hash", rounds, [](benchmark::State &state) {
        measurePieces<HashUpdate>(state, "that takes 0.5 us a piece", 1.02,
                                  {.digestPiece = std::chrono::nanoseconds(500)});
    });
    add("pieces/cipher", rounds, [](benchmark::State &state) {
        measurePieces<CipherUpdate>(state, "of 100 MB/s", 1.10, {.cipherNanosecondsPerByte = 10.0});
    });
}

} // namespace tembra::bench
