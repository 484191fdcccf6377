// The benchmarks of the provider. All options are Google Benchmark's; those below are the defaults.
#include "benchmarks.h"

#include <benchmark/benchmark.h>

#include <vector>

int main(int argc, char **argv) {
    // Short runs in random order, many times: background load then affects all of them equally.
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    char repeat[] = "--benchmark_repetitions=25";
    char aggregate[] = "--benchmark_report_aggregates_only=true";
    char time[] = "--benchmark_min_time=0.02";
    std::vector<char *> arguments = {argv[0], interleave, repeat, aggregate, time};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    tembra::bench::registerCalls();
    tembra::bench::registerThreads();
    tembra::bench::registerHandles();
    tembra::bench::registerHex();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
