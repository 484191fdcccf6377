// Several threads at once: time is elapsed time by all the calls that were made in it.
#include "entry_points.h"
#include "pairing.h"

#include <thread>

namespace tembra::bench {

namespace {

using namespace std::chrono_literals;

// Long enough for the starts of the threads not to count.
constexpr auto BATCH = 10'000us;

template <typename Call>
std::function<void(long)> inThreads(int count, Call call) {
    return [count, call](long calls) {
        std::vector<std::jthread> threads;
        for (int i = 0; i < count; ++i)
            threads.emplace_back([call, i, each = (calls + count - 1) / count] {
                for (long done = 0; done < each; ++done)
                    call(i);
            });
    };
}

// The token works on one call at a time, so the lock is what several threads wait for.
void measureSlowSign(benchmark::State &state) {
    Sign sign;
    nullToken.signature = 50us;
    Pairing pairing(state, "DeviceSign over a token call of 50 us, several threads, silent", BATCH);
    std::vector<std::size_t> providers, floors;
    for (const int count : {1, 2, 4}) {
        const std::string threads = std::to_string(count) + " threads";
        const auto provider = inThreads(count, [&](int) { sign.provider(); });
        const auto floor = inThreads(count, [&](int) { callFloor(sign); });
        providers.push_back(pairing.add({threads, provider}));
        floors.push_back(pairing.add({"floor, " + threads, floor}));
    }
    pairing.measure();
    for (std::size_t i = 0; i < providers.size(); ++i) {
        pairing.compare(providers[i], floors[i]);
        if (i > 0)
            pairing.compare(providers[i], providers[0]);
    }
}

template <typename Call>
void compareTraced(benchmark::State &state, const std::string &name, Call call) {
    const auto before = [] { TraceFile::instance().begin(nullptr); };
    Pairing pairing(state, name + ", unset, several threads", BATCH);
    const auto one = pairing.add({"1 thread", inThreads(1, call), before});
    const auto two = pairing.add({"2 threads", inThreads(2, call), before});
    pairing.measure();
    pairing.compare(two, one, 1.05);
}

void measureTracedHash(benchmark::State &state) {
    HashUpdate updates[] = {HashUpdate(1 << 10), HashUpdate(1 << 10)};
    compareTraced(state, updates[0].name, [&](int thread) { updates[thread].provider(); });
}

void measureTracedSign(benchmark::State &state) {
    Sign sign;
    compareTraced(state, sign.name, [&](int) { sign.provider(); });
}

} // namespace

void registerThreads(int rounds) {
    const int fewer = (rounds + 3) / 4;
    add("threads/slow_sign", fewer, measureSlowSign);
    add("threads/traced_hash", fewer, measureTracedHash);
    add("threads/traced_sign", fewer, measureTracedSign);
}

} // namespace tembra::bench
