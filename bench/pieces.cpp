// Large updates over a token that takes its time for every piece, silent.
#include "pairing.h"
#include "platform/skf.h"
#include "rows.h"
#include "session.h"
#include "trace_file.h"

namespace tembra::bench {

namespace {

constexpr int LENGTH = 1 << 20;
constexpr int PIECE = 1024;
constexpr double NANOSECONDS_PER_BYTE_AT_100_MB = 10.0;
const unsigned char key[16] = {};

// raw is called once for each piece, with where it begins.
template <typename Raw, typename Provider>
void comparePieces(benchmark::State &state, const char *title, double mark, Raw raw,
                   Provider provider) {
    setLevel("0");
    Pairing pairing(state, title);
    const auto pieces = pairing.add({"raw pieces", repeat([raw] {
                                         for (int done = 0; done < LENGTH; done += PIECE)
                                             raw(done);
                                     })});
    const auto level0 = pairing.add({"level 0", repeat(provider)});
    pairing.compare(level0, pieces, mark);
    pairing.measure();
}

void measureHash(benchmark::State &state) {
    Session session;
    nullToken.digestPiece = std::chrono::nanoseconds(500);
    std::vector<unsigned char> data(LENGTH);
    const SPI_HASH_HANDLE hash = DeviceNewHash(session.device, ORVEL_PKI_ALGORITHM_SM3);
    comparePieces(
        state, "DeviceHashUpdate (1 MB) over a token that takes 0.5 us a piece", 1.02,
        [&data](int done) {
            SKF_DigestUpdate(nullptr, &data[static_cast<std::size_t>(done)], PIECE);
        },
        [hash, &data] { DeviceHashUpdate(hash, data.data(), LENGTH); });
    DeviceFreeHash(hash);
}

void measureCipher(benchmark::State &state) {
    Session session;
    nullToken.cipherNanosecondsPerByte = NANOSECONDS_PER_BYTE_AT_100_MB;
    std::vector<unsigned char> data(LENGTH);
    const SPI_CIPHER_HANDLE cipher =
        DeviceNewCipher(session.device, 1, ORVEL_PKI_ALGORITHM_SMS4_CBC, key, sizeof(key), key);
    int outLength = 0;
    comparePieces(
        state, "DeviceCipherUpdate (1 MB) over a token of 100 MB/s", 1.10,
        [&data](int done) {
            unsigned char *piece = &data[static_cast<std::size_t>(done)];
            ULONG pieceLength = PIECE;
            SKF_EncryptInit(nullptr, {});
            SKF_Encrypt(nullptr, piece, PIECE, piece, &pieceLength);
        },
        [cipher, &data, &outLength] {
            DeviceCipherUpdate(cipher, data.data(), LENGTH, data.data(), LENGTH, &outLength);
        });
    DeviceFreeCipher(cipher);
}

} // namespace

void registerPieces(int rounds) {
    benchmark::RegisterBenchmark("pieces/hash", measureHash)->Iterations(rounds)->UseManualTime();
    benchmark::RegisterBenchmark("pieces/cipher", measureCipher)
        ->Iterations(rounds)
        ->UseManualTime();
}

} // namespace tembra::bench
