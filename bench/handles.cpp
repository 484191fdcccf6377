#include "pairing.h"
#include "rows.h"
#include "session.h"
#include "table.h"
#include "trace_file.h"

#include <algorithm>
#include <random>

namespace tembra::bench {

namespace {

constexpr const char *TITLE = "DeviceNewHash + DeviceFreeHash, by live handles, silent";

using Hashes = std::vector<SPI_HASH_HANDLE>;

SPI_HASH_HANDLE newHash(const Session &session) {
    return DeviceNewHash(session.device, ORVEL_PKI_ALGORITHM_SM3);
}

Hashes newHashes(const Session &session, int count) {
    Hashes hashes(static_cast<std::size_t>(count));
    std::generate(hashes.begin(), hashes.end(), [&session] { return newHash(session); });
    return hashes;
}

void freeAll(const Hashes &hashes) {
    for (const SPI_HASH_HANDLE hash : hashes)
        DeviceFreeHash(hash);
}

// The oldest handle is freed and a new one made, so that the place in the list is the dearest.
void measureLive(benchmark::State &state) {
    Session sessions[4];
    const int live[4] = {1, 16, 64, 10'000};
    Hashes hashes[4];
    Pairing pairing(state, TITLE);
    std::size_t contenders[4];
    for (std::size_t i = 0; i < 4; ++i) {
        hashes[i] = newHashes(sessions[i], live[i]);
        const auto call = [&session = sessions[i], &mine = hashes[i],
                           oldest = std::size_t{0}]() mutable {
            DeviceFreeHash(mine[oldest]);
            mine[oldest] = newHash(session);
            oldest = (oldest + 1) % mine.size();
        };
        contenders[i] = pairing.add({std::to_string(live[i]) + " live", repeat(call)});
        if (i > 0)
            pairing.compare(contenders[i], contenders[0]);
    }
    pairing.measure();
    for (const Hashes &mine : hashes)
        freeAll(mine);
}

template <typename Reorder>
double secondsFor(const Session &session, Reorder reorder) {
    const auto start = std::chrono::steady_clock::now();
    Hashes hashes = newHashes(session, 10'000);
    reorder(hashes);
    freeAll(hashes);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void measureTenThousand(benchmark::State &state) {
    Session session;
    std::vector<double> seconds;
    for (auto _ : state) {
        const double forwards = secondsFor(session, [](Hashes &) {});
        const double backwards =
            secondsFor(session, [](Hashes &all) { std::reverse(all.begin(), all.end()); });
        const double mixed = secondsFor(session, [](Hashes &all) {
            std::shuffle(all.begin(), all.end(), std::minstd_rand(1));
        });
        seconds.push_back(std::max({forwards, backwards, mixed}));
        state.SetIterationTime(forwards + backwards + mixed);
    }
    Table::instance().add({.section = TITLE,
                           .what = "10,000 made and freed, in the dearest of three orders",
                           .value = text("%.3f s", median(seconds)),
                           .mark = "< 1 s",
                           .met = median(seconds) < 1});
}

} // namespace

void registerHandles(int rounds) {
    add("handles/live", rounds, measureLive);
    add("handles/ten_thousand", (rounds + 9) / 10, measureTenThousand);
}

} // namespace tembra::bench
