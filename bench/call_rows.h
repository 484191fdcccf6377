// The rows of one entry point: against the raw call, the floor and the bare writes of its lines.
#pragma once

#include "floor.h"
#include "pairing.h"
#include "table.h"

#include <cstdlib>
#include <numeric>

namespace tembra::bench {

struct CallMarks {
    double silent = NO_MARK;    // level 0 against the floor
    double traced = NO_MARK;    // unset against the floor's own line
    double bareWrite = NO_MARK; // unset against one write of the same bytes
};

inline void at(const char *level) {
    setLevel(level);
    TraceFiles::instance().empty();
}

// The lines that one call writes at a level.
template <typename Call>
std::vector<std::string> linesOf(Call call, const char *level) {
    at(level);
    call();
    return TraceFiles::instance().lines();
}

inline std::size_t bytesOf(const std::vector<std::string> &lines) {
    return std::accumulate(
        lines.begin(), lines.end(), std::size_t{0},
        [](std::size_t sum, const std::string &line) { return sum + line.size(); });
}

inline std::string named(const char *level, const std::vector<std::string> &lines) {
    return std::string(level) + " (" + std::to_string(lines.size()) + " lines, " +
           std::to_string(bytesOf(lines)) + " bytes)";
}

// The floor is one only if it writes what the provider writes.
template <typename Line>
void checkFloorLine(const std::string &name, Line floorLine, std::size_t bytes) {
    at(nullptr);
    floorLine();
    const std::size_t written = TraceFiles::instance().written();
    if (written != bytes) {
        std::fprintf(stderr, "%s: the floor writes %zu bytes, the provider %zu\n", name.c_str(),
                     written, bytes);
        std::exit(1);
    }
}

inline auto bareWrites(std::vector<std::string> lines) {
    return [lines = std::move(lines)] {
        for (const std::string &line : lines)
            TraceFiles::instance().write(line.data(), line.size());
    };
}

// One entry point. after is called between batches, untimed, and gives back what the calls took.
template <typename Raw, typename Provider>
struct Call {
    std::string name;
    Raw raw;
    Provider provider;
    int statements; // trace statements of a call that succeeds
    bool locks;     // whether the raw call is made under the lock
    std::function<void()> after = {};
};

template <typename Raw, typename Provider>
Call(std::string, Raw, Provider, int, bool) -> Call<Raw, Provider>;
template <typename Raw, typename Provider>
Call(std::string, Raw, Provider, int, bool, std::function<void()>) -> Call<Raw, Provider>;

// floorLine writes the line that the entry point writes at information.
template <typename Raw, typename Provider, typename Line>
void measureCall(benchmark::State &state, Call<Raw, Provider> call, const CallMarks &marks,
                 Line floorLine) {
    const auto floor = [call] {
        lookLevelUp(call.statements);
        const auto lock =
            call.locks ? std::unique_lock(floorLock) : std::unique_lock<std::recursive_mutex>();
        call.raw();
    };
    const auto unsetLines = linesOf(call.provider, nullptr);
    const auto verboseLines = linesOf(call.provider, "5");
    if (call.after)
        call.after();
    const bool hasOneLine = unsetLines.size() == 1;
    if (hasOneLine)
        checkFloorLine(call.name, floorLine, bytesOf(unsetLines));

    const auto level = [](const char *value) { return [value] { at(value); }; };
    Pairing pairing(state, call.name);
    const auto raw = pairing.add({"raw call", repeat(call.raw)});
    const auto floor0 = pairing.add({"floor", repeat(floor), level("0")});
    const auto level0 = pairing.add({"level 0", repeat(call.provider), level("0"), call.after});
    const auto bare = pairing.add({"bare write", repeat(bareWrites(unsetLines)), level(nullptr)});
    const auto floorUnset = pairing.add({"floor with a line", repeat([floor, floorLine] {
                                             floor();
                                             floorLine();
                                         }),
                                         level(nullptr)});
    const auto unset = pairing.add(
        {named("unset", unsetLines), repeat(call.provider), level(nullptr), call.after});
    const auto bare5 = pairing.add({"bare writes", repeat(bareWrites(verboseLines)), level("5")});
    const auto level5 = pairing.add(
        {named("level 5", verboseLines), repeat(call.provider), level("5"), call.after});
    pairing.compare(level0, raw);
    pairing.compare(level0, floor0, marks.silent);
    if (hasOneLine) {
        pairing.compare(unset, floorUnset, marks.traced);
        pairing.compare(unset, bare, marks.bareWrite);
    } else {
        pairing.compare(unset, level0);
    }
    pairing.compare(level5, bare5);
    pairing.measure();
}

} // namespace tembra::bench
