// Opening and closing a hash handle by the number of open ones, without trace.
#include "benchmarks.h"
#include "session.h"

#include <benchmark/benchmark.h>

namespace tembra::bench {

void registerHandles() {
    benchmark::RegisterBenchmark(
        "new_and_free_hash/open",
        [](benchmark::State &state) {
            const Session session;
            const auto newHash = [&] {
                return DeviceNewHash(session.device, ORVEL_PKI_ALGORITHM_SM3);
            };
            std::vector<SPI_HASH_HANDLE> hashes(static_cast<std::size_t>(state.range()));
            for (SPI_HASH_HANDLE &hash : hashes)
                hash = newHash();
            std::size_t oldest = 0; // the last in the provider's list, so the slowest to find
            for (auto _ : state) {
                DeviceFreeHash(hashes[oldest]);
                hashes[oldest] = newHash();
                oldest = (oldest + 1) % hashes.size();
            }
            for (const SPI_HASH_HANDLE hash : hashes)
                DeviceFreeHash(hash);
        })
        ->Arg(1)
        ->Arg(16)
        ->Arg(64)
        ->Arg(10'000);
}

} // namespace tembra::bench
