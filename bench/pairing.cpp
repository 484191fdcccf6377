#include "pairing.h"

#include "table.h"

#include <algorithm>
#include <utility>

namespace tembra::bench {

namespace {

constexpr long MOST_CALLS = 20'000; // of a batch, so that what the calls leave behind stays small

std::string timeText(double nanoseconds) {
    if (nanoseconds < 1e3)
        return text("%.1f ns", nanoseconds);
    if (nanoseconds < 1e6)
        return text("%.2f us", nanoseconds / 1e3);
    return text("%.2f ms", nanoseconds / 1e6);
}

} // namespace

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

Pairing::Pairing(benchmark::State &ofState, std::string withTitle, std::chrono::microseconds time)
    : state(ofState), title(std::move(withTitle)), batch(time) {}

std::size_t Pairing::add(Contender contender) {
    all.push_back({std::move(contender)});
    return all.size() - 1;
}

void Pairing::compare(std::size_t subject, std::size_t reference, double mark) {
    comparisons.push_back({subject, reference, mark});
}

double Pairing::timeBatch(Series &series) {
    using Clock = std::chrono::steady_clock;
    const Contender &contender = series.contender;
    if (contender.before)
        contender.before();
    const Clock::time_point start = Clock::now();
    contender.run(series.calls);
    const double taken = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
    if (contender.after)
        contender.after();
    return taken;
}

void Pairing::chooseBatch(Series &series) const {
    const double wanted = static_cast<double>(batch.count());
    while (timeBatch(series) < wanted && series.calls < MOST_CALLS)
        series.calls *= 2;
}

void Pairing::measure() {
    for (Series &series : all)
        chooseBatch(series);
    bool backwards = false; // every other round, against a drift within the round
    for (auto _ : state) {
        double round = 0;
        for (std::size_t i = 0; i < all.size(); ++i) {
            Series &series = all[backwards ? all.size() - 1 - i : i];
            const double taken = timeBatch(series);
            series.nanoseconds.push_back(taken / static_cast<double>(series.calls));
            round += taken;
        }
        state.SetIterationTime(round / 1e9);
        backwards = !backwards;
    }
    for (const Comparison &comparison : comparisons)
        report(comparison);
}

void Pairing::report(const Comparison &comparison) {
    const Series &subject = all[comparison.subject];
    const Series &reference = all[comparison.reference];
    std::vector<double> ratios;
    for (std::size_t i = 0; i < subject.nanoseconds.size(); ++i)
        ratios.push_back(subject.nanoseconds[i] / reference.nanoseconds[i]);
    const double ratio = median(ratios);
    const std::string what = subject.contender.name + " / " + reference.contender.name;
    state.counters[what] = ratio;
    Table::instance().add(
        {.section = title,
         .what = what,
         .value = text(ratio < 10 ? "%.3f" : "%.0f", ratio),
         .mark = comparison.mark == NO_MARK ? "" : text("<= %.2f", comparison.mark),
         .met = comparison.mark == NO_MARK || ratio <= comparison.mark,
         .taken = timeText(median(subject.nanoseconds)),
         .against = timeText(median(reference.nanoseconds))});
}

} // namespace tembra::bench
