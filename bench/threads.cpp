// Several threads at once: time is elapsed time by all the calls that were made in it.
#include "floor.h"
#include "pairing.h"
#include "platform/skf.h"
#include "rows.h"
#include "session.h"
#include "table.h"

#include <algorithm>
#include <thread>

namespace tembra::bench {

namespace {

using namespace std::chrono_literals;

// Long enough for the starts of the threads not to count.
constexpr auto BATCH = 10'000us;

template <typename Call>
std::function<void(long)> inThreads(int count, Call call) {
    return [count, call](long calls) {
        std::vector<std::thread> threads;
        for (int i = 0; i < count; ++i)
            threads.emplace_back([call, i, each = (calls + count - 1) / count] {
                for (long done = 0; done < each; ++done)
                    call(i);
            });
        for (std::thread &thread : threads)
            thread.join();
    };
}

void sign(SPI_KEYPAIR_HANDLE key) {
    static const unsigned char digest[32] = {};
    unsigned char signature[80];
    int length = 0;
    DeviceSign(key, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, digest, sizeof(digest), signature,
               sizeof(signature), &length);
}

// The token works on one call at a time, so the lock is what several threads wait for.
void measureSlowSign(benchmark::State &state) {
    Session session;
    nullToken.signature = 50us;
    Pairing pairing(state, "DeviceSign over a token call of 50 us, several threads, silent", BATCH);
    std::vector<std::size_t> providers;
    for (const int count : {1, 2, 4}) {
        const std::string threads = std::to_string(count) + " threads";
        const auto floor = pairing.add({"floor, " + threads, inThreads(count, [](int) {
                                            lookLevelUp(4);
                                            const std::scoped_lock lock(floorLock);
                                            ECCSIGNATUREBLOB blob = {};
                                            SKF_ECCSignData(nullptr, nullptr, 0, &blob);
                                        })});
        providers.push_back(
            pairing.add({threads, inThreads(count, [key = session.signKey](int) { sign(key); })}));
        pairing.compare(providers.back(), floor);
    }
    pairing.compare(providers[1], providers[0]);
    pairing.compare(providers[2], providers[0]);
    pairing.measure();
}

// Whole lines of the trace that hold text, and how many there are at all.
void checkLines(const char *title, const std::string &text, long calls) {
    const std::vector<std::string> lines = TraceFiles::instance().lines();
    const auto whole = std::count_if(lines.begin(), lines.end(), [&text](const std::string &line) {
        return line.find(text) == line.rfind(text) && line.find(text) != std::string::npos &&
               line.ends_with(" \n");
    });
    const long damaged = static_cast<long>(lines.size()) - whole;
    const long lost = calls - whole;
    Table::instance().add({.section = title,
                           .what = "lines torn or lost of " + std::to_string(calls),
                           .value = std::to_string(std::max(damaged, lost)),
                           .mark = "0",
                           .met = damaged == 0 && lost == 0});
}

template <typename Call>
void compareThreads(benchmark::State &state, const char *title, const std::string &text,
                    Call call) {
    const auto before = [] { TraceFiles::instance().begin(nullptr); };
    Pairing pairing(state, title, BATCH);
    const auto one = pairing.add({"1 thread", inThreads(1, call), before});
    const auto two = pairing.add({"2 threads", inThreads(2, call), before});
    pairing.compare(two, one, 1.05);
    pairing.measure();

    constexpr long CALLS = 10'000;
    before();
    inThreads(2, call)(CALLS);
    checkLines(title, text, CALLS);
}

void measureTracedHash(benchmark::State &state) {
    Session session;
    static const unsigned char data[1024] = {};
    SPI_HASH_HANDLE hashes[2] = {DeviceNewHash(session.device, ORVEL_PKI_ALGORITHM_SM3),
                                 DeviceNewHash(session.device, ORVEL_PKI_ALGORITHM_SM3)};
    compareThreads(state, "DeviceHashUpdate (1 KB), unset, several threads",
                   "[INFO] [DeviceHashUpdate] ",
                   [&hashes](int thread) { DeviceHashUpdate(hashes[thread], data, sizeof(data)); });
    setLevel("0");
    for (const SPI_HASH_HANDLE hash : hashes)
        DeviceFreeHash(hash);
}

void measureTracedSign(benchmark::State &state) {
    Session session;
    compareThreads(state, "DeviceSign, unset, several threads", "[INFO] [DeviceSign] ",
                   [key = session.signKey](int) { sign(key); });
}

} // namespace

void registerThreads(int rounds) {
    const int fewer = (rounds + 3) / 4;
    add("threads/slow_sign", fewer, measureSlowSign);
    add("threads/traced_hash", fewer, measureTracedHash);
    add("threads/traced_sign", fewer, measureTracedSign);
}

} // namespace tembra::bench
