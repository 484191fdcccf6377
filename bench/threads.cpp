// One entry point in several threads; compare the numbers of calls per second.
#include "benchmarks.h"
#include "entry_points.h"

#include <memory>

namespace tembra::bench {

namespace {

using namespace std::chrono_literals;

std::unique_ptr<Sign> sign; // shared by the threads of a run

void sign50us(const benchmark::State &) {
    sign = std::make_unique<Sign>();
    nullToken.signature = 50us;
}

void signTraced(const benchmark::State &) {
    sign = std::make_unique<Sign>();
    TraceFile::instance().begin(nullptr);
}

void add(const char *name, void (*setUp)(const benchmark::State &)) {
    benchmark::RegisterBenchmark(name,
                                 [](benchmark::State &state) {
                                     for (auto _ : state)
                                         sign->provider();
                                     state.SetItemsProcessed(state.iterations());
                                 })
        ->Setup(setUp)
        ->Teardown([](const benchmark::State &) { sign.reset(); })
        ->ThreadRange(1, 4)
        ->UseRealTime();
}

} // namespace

void registerThreads() {
    // The token handles one call at a time, so the threads wait for the provider's lock.
    add("sign/silent/token_50us", sign50us);
    add("sign/information", signTraced);
}

} // namespace tembra::bench
