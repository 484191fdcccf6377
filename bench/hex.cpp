#include "log/hex.h"

#include "benchmarks.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace tembra::bench {

void registerHex() {
    benchmark::RegisterBenchmark("hex", [](benchmark::State &state) {
        const std::vector<unsigned char> data(static_cast<std::size_t>(state.range()), 0xA5);
        std::vector<char> digits(2 * data.size());
        for (auto _ : state) {
            hexEncode(data.data(), static_cast<int>(data.size()), digits.data());
            benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(state.iterations() * state.range());
    })->Range(1 << 10, 1 << 20);
}

} // namespace tembra::bench
