// Paired measurement: what is to be compared runs in turns, a short batch each, and the ratio is
// the median over the rounds, so that whatever else the machine does meets all of them alike.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace tembra::bench {

struct Contender {
    std::string name;
    std::function<void(long calls)> run;
    std::function<void()> before = {}; // each batch, untimed, as after
    std::function<void()> after = {};
};

// Makes a batch of a single call; the loop is compiled together with the call.
template <typename Call>
std::function<void(long)> repeat(Call call) {
    return [call](long calls) mutable {
        for (long i = 0; i < calls; ++i)
            call();
    };
}

// A benchmark that is measured so often.
template <typename Rows>
void add(const std::string &name, int rounds, Rows rows) {
    benchmark::RegisterBenchmark(name.c_str(), rows)->Iterations(rounds)->UseManualTime();
}

inline constexpr double NO_MARK = 0;

class Pairing {
public:
    // batch is how long one contender runs before it is the next one's turn.
    Pairing(benchmark::State &state, std::string title,
            std::chrono::microseconds batch = std::chrono::microseconds(400));

    // What compare() names it by.
    std::size_t add(Contender contender);
    // A row of the table: how much longer a call of subject takes than one of reference, and what
    // that must not exceed.
    void compare(std::size_t subject, std::size_t reference, double mark = NO_MARK);
    // Runs the rounds and hands the rows to the table.
    void measure();

private:
    struct Comparison {
        std::size_t subject;
        std::size_t reference;
        double mark;
    };
    struct Series {
        Contender contender;
        long calls = 1;                    // of a batch
        std::vector<double> nanoseconds{}; // a call, round by round
    };

    static double timeBatch(Series &series);
    void chooseBatch(Series &series) const;
    void report(const Comparison &comparison);

    benchmark::State &state;
    std::string title;
    std::chrono::nanoseconds batch;
    std::vector<Series> all;
    std::vector<Comparison> comparisons;
};

double median(std::vector<double> values);

} // namespace tembra::bench
