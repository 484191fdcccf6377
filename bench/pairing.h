// Paired measurement: what is to be compared runs in turns, a short batch each, and a ratio is the
// median over the rounds, so that whatever else the machine does meets all of them alike. Each
// measurement prints its rows of the table.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace tembra::bench {

// The benchmarks by subject; rounds is how often each is measured.
void registerCalls(int rounds);   // one entry point at a time
void registerThreads(int rounds); // several threads at once
void registerHandles(int rounds); // hash handles by the number of live ones
void registerHex(int rounds);     // hex texts

template <typename Measure>
void add(const std::string &name, int rounds, Measure measure) {
    benchmark::RegisterBenchmark(name.c_str(), measure)->Iterations(rounds)->UseManualTime();
}

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

inline constexpr double NO_MARK = 0;

void printHead();
int marksMissed(); // so far

class Pairing {
public:
    // batch is how long one contender runs before it is the next one's turn.
    Pairing(benchmark::State &state, const std::string &title,
            std::chrono::microseconds batch = std::chrono::microseconds(400));

    // Returns the contender's number.
    std::size_t add(Contender contender);
    // Runs the rounds.
    void measure();

    // A row: how much longer a call of subject takes than one of reference, and what that must not
    // exceed.
    void compare(std::size_t subject, std::size_t reference, double mark = NO_MARK);
    // A row with a figure that was made of the time a call of subject takes.
    void show(std::size_t subject, double figure, const char *unit, const char *mark,
              bool met) const;
    double nanoseconds(std::size_t subject) const;

private:
    struct Series : Contender {
        long calls = 1;                    // of a batch
        std::vector<double> nanoseconds{}; // a call, round by round

        double timeBatch() const;
    };

    benchmark::State &m_state;
    const std::chrono::nanoseconds m_batch;
    std::vector<Series> m_all;
};

} // namespace tembra::bench
