// Hash handles by the number of live ones, silent.
#include "pairing.h"
#include "session.h"

#include <algorithm>
#include <random>

namespace tembra::bench {

namespace {

struct LiveHashes : Session {
    explicit LiveHashes(std::size_t count) : all(count) {
        std::generate(all.begin(), all.end(), [this] { return newHash(); });
    }
    ~LiveHashes() { freeAll(all, DeviceFreeHash); }

    SPI_HASH_HANDLE newHash() const { return DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3); }

    std::vector<SPI_HASH_HANDLE> all;
};

void measureLive(benchmark::State &state) {
    LiveHashes sets[] = {LiveHashes(1), LiveHashes(16), LiveHashes(64), LiveHashes(10'000)};
    Pairing pairing(state, "DeviceNewHash + DeviceFreeHash, by live handles, silent");
    for (LiveHashes &hashes : sets) {
        // The oldest is freed, so that the place in the list is the dearest.
        const auto replace = [&hashes, oldest = std::size_t{0}]() mutable {
            DeviceFreeHash(hashes.all[oldest]);
            hashes.all[oldest] = hashes.newHash();
            oldest = (oldest + 1) % hashes.all.size();
        };
        pairing.add({std::to_string(hashes.all.size()) + " live", repeat(replace)});
    }
    pairing.measure();
    for (std::size_t i = 1; i < std::size(sets); ++i)
        pairing.compare(i, 0);
}

void measureTenThousand(benchmark::State &state) {
    Pairing pairing(state, "10,000 hash handles made and freed, silent");
    using Place = std::vector<SPI_HASH_HANDLE>::iterator;
    const auto add = [&pairing](const char *order, void (*reorder)(Place begin, Place end)) {
        pairing.add({order, repeat([reorder] {
                         LiveHashes hashes(10'000);
                         reorder(hashes.all.begin(), hashes.all.end());
                     })});
    };
    add("in order", [](Place, Place) {});
    add("in reverse", std::reverse<Place>);
    add("shuffled", [](Place begin, Place end) { std::shuffle(begin, end, std::minstd_rand(1)); });
    pairing.measure();
    for (std::size_t i = 0; i < 3; ++i) {
        const double seconds = pairing.nanoseconds(i) / 1e9;
        pairing.show(i, seconds, "s", "< 1 s", seconds < 1);
    }
}

} // namespace

void registerHandles(int rounds) {
    add("handles/live", rounds, measureLive);
    add("handles/ten_thousand", (rounds + 9) / 10, measureTenThousand);
}

} // namespace tembra::bench
