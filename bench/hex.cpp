#include "log/hex.h"

#include "pairing.h"
#include "rows.h"
#include "table.h"

namespace tembra::bench {

namespace {

void measureHex(benchmark::State &state, int length) {
    const std::vector<unsigned char> data(static_cast<std::size_t>(length), 0xA5);
    std::vector<char> digits(2 * data.size() + 1);
    const long calls = (4 << 20) / length; // 4 MB a round
    std::vector<double> gigabytesPerSecond;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        for (long i = 0; i < calls; ++i) {
            hexEncode(data.data(), length, digits.data());
            benchmark::DoNotOptimize(digits.data());
            benchmark::ClobberMemory();
        }
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
        gigabytesPerSecond.push_back(static_cast<double>(calls) * length / taken.count() / 1e9);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * calls * length);
    const double speed = median(gigabytesPerSecond);
    Table::instance().add({.section = "hexEncode",
                           .what = std::to_string(length) + " bytes of input at a time",
                           .value = text("%.2f GB/s", speed),
                           .mark = ">= 2 GB/s",
                           .met = speed >= 2});
}

} // namespace

void registerHex(int rounds) {
    for (const int length : {1 << 10, 1 << 16, 1 << 20})
        add("hex/" + std::to_string(length), rounds,
            [length](benchmark::State &state) { measureHex(state, length); });
}

} // namespace tembra::bench
