// The benchmarks of the provider. Beside Google Benchmark's options, --rounds=N says how often
// everything is measured (1 to see only that it runs).
#include "rows.h"
#include "table.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>

namespace {

// The table says it all; what Google Benchmark knows goes to --benchmark_out.
class Silent : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &) override {}
};

} // namespace

int main(int argc, char **argv) {
    int rounds = 101;
    benchmark::Initialize(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--rounds=", 9) != 0 || (rounds = std::atoi(argv[i] + 9)) < 1) {
            benchmark::ReportUnrecognizedArguments(argc, argv);
            return 1;
        }
    }
    tembra::bench::registerCalls(rounds);
    tembra::bench::registerHex(rounds);
    tembra::bench::registerHandles(rounds);
    tembra::bench::registerThreads(rounds);

    Silent silent;
    benchmark::RunSpecifiedBenchmarks(&silent);
    benchmark::Shutdown();
    tembra::bench::Table::instance().print();
    return 0;
}
