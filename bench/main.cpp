// The benchmarks of the provider. Beside Google Benchmark's options, --rounds=N says how often
// everything is measured (1 to see only that it runs).
#include "pairing.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>

using namespace tembra::bench;

int main(int argc, char **argv) {
    int rounds = 101;
    benchmark::Initialize(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--rounds=", 9) != 0 || (rounds = std::atoi(argv[i] + 9)) < 1) {
            benchmark::ReportUnrecognizedArguments(argc, argv);
            return 1;
        }
    }
    registerCalls(rounds);
    registerHex(rounds);
    registerHandles(rounds);
    registerThreads(rounds);

    printHead();
    // The table says it all; what Google Benchmark knows goes to --benchmark_out.
    std::ostream nowhere(nullptr);
    benchmark::ConsoleReporter silent;
    silent.SetOutputStream(&nowhere);
    silent.SetErrorStream(&nowhere);
    benchmark::RunSpecifiedBenchmarks(&silent);
    benchmark::Shutdown();
    std::printf("\nmarks missed: %d\n", marksMissed());
    return 0;
}
