#include "pairing.h"

#include <algorithm>
#include <cstdio>

namespace tembra::bench {

namespace {

constexpr long MOST_CALLS = 20'000; // of a batch, so that what the calls leave behind stays small

int missed = 0;

void printRow(const std::string &value, const std::string &mark, const std::string &result,
              const std::string &taken, const std::string &against, const std::string &what) {
    std::printf("%10s  %-9s %-6s %10s %10s  %s\n", value.c_str(), mark.c_str(), result.c_str(),
                taken.c_str(), against.c_str(), what.c_str());
}

std::string judge(bool met) {
    missed += met ? 0 : 1;
    return met ? "met" : "MISSED";
}

template <typename... Values>
std::string text(const char *format, Values... values) {
    char buffer[256];
    std::snprintf(buffer, sizeof(buffer), format, values...);
    return buffer;
}

std::string timeText(double nanoseconds) {
    if (nanoseconds < 1e3)
        return text("%.1f ns", nanoseconds);
    if (nanoseconds < 1e6)
        return text("%.2f us", nanoseconds / 1e3);
    return text("%.2f ms", nanoseconds / 1e6);
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

void printHead() {
    printRow("ratio", "mark", "", "a call", "against", "what / against what");
}

int marksMissed() {
    return missed;
}

Pairing::Pairing(benchmark::State &ofState, const std::string &title,
                 std::chrono::microseconds time)
    : m_state(ofState), m_batch(time) {
    std::printf("\n%s\n", title.c_str());
}

std::size_t Pairing::add(Contender contender) {
    m_all.push_back({std::move(contender)});
    return m_all.size() - 1;
}

double Pairing::Series::timeBatch() const {
    using Clock = std::chrono::steady_clock;
    if (before)
        before();
    const Clock::time_point start = Clock::now();
    run(calls);
    const double taken = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
    if (after)
        after();
    return taken;
}

void Pairing::measure() {
    std::vector<Series *> turns;
    for (Series &series : m_all) {
        turns.push_back(&series);
        while (series.timeBatch() < static_cast<double>(m_batch.count()) &&
               series.calls < MOST_CALLS)
            series.calls *= 2;
    }
    for (auto _ : m_state) {
        double round = 0;
        for (Series *series : turns) {
            const double taken = series->timeBatch();
            series->nanoseconds.push_back(taken / static_cast<double>(series->calls));
            round += taken;
        }
        m_state.SetIterationTime(round / 1e9);
        std::reverse(turns.begin(), turns.end()); // against a drift within the round
    }
}

void Pairing::compare(std::size_t subject, std::size_t reference, double mark) {
    std::vector<double> ratios;
    std::transform(m_all[subject].nanoseconds.begin(), m_all[subject].nanoseconds.end(),
                   m_all[reference].nanoseconds.begin(), std::back_inserter(ratios),
                   std::divides());
    const double ratio = median(ratios);
    const std::string what = m_all[subject].name + " / " + m_all[reference].name;
    m_state.counters[what] = ratio;
    const bool hasMark = mark != NO_MARK;
    printRow(text(ratio < 10 ? "%.3f" : "%.0f", ratio), hasMark ? text("<= %.2f", mark) : "",
             hasMark ? judge(ratio <= mark) : "", timeText(nanoseconds(subject)),
             timeText(nanoseconds(reference)), what);
}

void Pairing::show(std::size_t subject, double figure, const char *unit, const char *mark,
                   bool met) const {
    printRow(text("%.3g %s", figure, unit), mark, judge(met), timeText(nanoseconds(subject)), "",
             m_all[subject].name);
}

double Pairing::nanoseconds(std::size_t subject) const {
    return median(m_all[subject].nanoseconds);
}

} // namespace tembra::bench
