// The rows of one entry point: against the raw call, the floor and the bare writes of its lines.
#pragma once

#include "floor.h"
#include "pairing.h"

#include <cstdlib>
#include <numeric>

namespace tembra::bench {

struct CallMarks {
    double silent = NO_MARK;    // level 0 against the floor
    double traced = NO_MARK;    // unset against the floor's own line
    double bareWrite = NO_MARK; // unset against one write of the same bytes
};

// One entry point.
struct CallRows {
    std::string name;
    int statements; // trace statements of a call that succeeds
    bool locks;     // whether the raw call is made under the lock
    CallMarks marks = {};
    std::function<void()> after = {}; // between batches, untimed: gives back what the calls took
};

// The lines that one call writes at a level.
struct CallLines {
    std::vector<std::string> lines;
    std::size_t bytes;
    std::string name;

    template <typename Call>
    CallLines(Call call, const char *level, const char *levelName) {
        TraceFiles::instance().begin(level);
        call();
        lines = TraceFiles::instance().lines();
        bytes = std::accumulate(
            lines.begin(), lines.end(), std::size_t{0},
            [](std::size_t sum, const std::string &line) { return sum + line.size(); });
        name = std::string(levelName) + " (" + std::to_string(lines.size()) + " lines, " +
               std::to_string(bytes) + " bytes)";
    }

    // Writes of the same bytes.
    auto bareWrites() const {
        return repeat([texts = lines] {
            for (const std::string &line : texts)
                TraceFiles::instance().write(line.data(), line.size());
        });
    }
};

// The floor is one only if it writes what the provider writes.
template <typename Line>
void checkFloorLine(const std::string &name, Line floorLine, std::size_t bytes) {
    TraceFiles::instance().begin(nullptr);
    floorLine();
    const std::size_t written = TraceFiles::instance().written();
    if (written != bytes) {
        std::fprintf(stderr, "%s: the floor writes %zu bytes, the provider %zu\n", name.c_str(),
                     written, bytes);
        std::exit(1);
    }
}

// floorLine writes the line that the entry point writes at information.
template <typename Raw, typename Provider, typename Line>
void measureCall(benchmark::State &state, const CallRows &call, Raw raw, Provider provider,
                 Line floorLine) {
    const auto floor = [raw, statements = call.statements, locks = call.locks] {
        lookLevelUp(statements);
        const auto lock =
            locks ? std::unique_lock(floorLock) : std::unique_lock<std::recursive_mutex>();
        raw();
    };
    const auto floorWithLine = [floor, floorLine] {
        floor();
        floorLine();
    };
    const CallLines unsetLines(provider, nullptr, "unset");
    const CallLines verboseLines(provider, "5", "level 5");
    if (call.after)
        call.after();
    const bool hasOneLine = unsetLines.lines.size() == 1;
    if (hasOneLine)
        checkFloorLine(call.name, floorLine, unsetLines.bytes);

    const auto at = [](const char *level) {
        return [level] { TraceFiles::instance().begin(level); };
    };
    Pairing pairing(state, call.name);
    const auto rawCall = pairing.add({"raw call", repeat(raw)});
    const auto floor0 = pairing.add({"floor", repeat(floor), at("0")});
    const auto level0 = pairing.add({"level 0", repeat(provider), at("0"), call.after});
    const auto bare = pairing.add({"bare write", unsetLines.bareWrites(), at(nullptr)});
    const auto floorUnset = pairing.add({"floor with a line", repeat(floorWithLine), at(nullptr)});
    const auto unset = pairing.add({unsetLines.name, repeat(provider), at(nullptr), call.after});
    const auto bare5 = pairing.add({"bare writes", verboseLines.bareWrites(), at("5")});
    const auto level5 = pairing.add({verboseLines.name, repeat(provider), at("5"), call.after});
    pairing.compare(level0, rawCall);
    pairing.compare(level0, floor0, call.marks.silent);
    if (hasOneLine) {
        pairing.compare(unset, floorUnset, call.marks.traced);
        pairing.compare(unset, bare, call.marks.bareWrite);
    } else {
        pairing.compare(unset, level0);
    }
    pairing.compare(level5, bare5);
    pairing.measure();
}

} // namespace tembra::bench
