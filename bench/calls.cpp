// One entry point at a time: against the raw call, the floor and the bare writes of its lines.
#include "entry_points.h"
#include "pairing.h"

namespace tembra::bench {

namespace {

using Lines = std::vector<std::string>;

struct CallMarks {
    double silent = NO_MARK;    // level 0 against the floor
    double traced = NO_MARK;    // unset against the floor's own line
    double bareWrite = NO_MARK; // unset against one write of the same bytes
};

constexpr CallMarks SILENT_AND_TRACED = {.silent = 1.10, .traced = 1.15, .bareWrite = 1.60};
constexpr CallMarks TRACED = {.traced = 1.15, .bareWrite = 1.60};

template <typename Call>
Lines linesOf(const char *level, Call call) {
    TraceFile::instance().begin(level);
    call();
    return TraceFile::instance().lines();
}

std::string describe(const std::string &level, const Lines &lines) {
    std::size_t bytes = 0;
    for (const std::string &line : lines)
        bytes += line.size();
    return level + " (" + std::to_string(lines.size()) + " lines, " + std::to_string(bytes) +
           " bytes)";
}

std::function<void(long)> bareWrites(const Lines &lines) {
    return repeat([lines] {
        for (const std::string &line : lines)
            TraceFile::instance().write(line);
    });
}

template <typename EntryPoint>
void measureCall(benchmark::State &state, EntryPoint &entryPoint, const CallMarks &marks) {
    const auto raw = [&] { entryPoint.raw(); };
    const auto provider = [&] { entryPoint.provider(); };
    const auto floor = [&] { callFloor(entryPoint); };
    const auto floorWithLine = [&] {
        callFloor(entryPoint);
        entryPoint.line();
    };
    const auto giveBack = [&] {
        TraceFile::setLevel("0");
        entryPoint.giveBack();
    };
    const auto at = [](const char *level) {
        return [level] { TraceFile::instance().begin(level); };
    };
    const Lines unset = linesOf(nullptr, provider);
    const Lines verbose = linesOf("5", provider);
    const Lines ofFloor = linesOf(nullptr, floorWithLine);
    giveBack();

    Pairing pairing(state, entryPoint.name);
    const auto rawCall = pairing.add({"raw call", repeat(raw)});
    const auto floor0 = pairing.add({"floor", repeat(floor), at("0")});
    const auto level0 = pairing.add({"level 0", repeat(provider), at("0"), giveBack});
    const auto floorUnset =
        pairing.add({describe("floor", ofFloor), repeat(floorWithLine), at(nullptr)});
    const auto levelUnset =
        pairing.add({describe("unset", unset), repeat(provider), at(nullptr), giveBack});
    const auto bareUnset = pairing.add({"bare write", bareWrites(unset), at(nullptr)});
    const auto level5 =
        pairing.add({describe("level 5", verbose), repeat(provider), at("5"), giveBack});
    const auto bare5 = pairing.add({"bare writes", bareWrites(verbose), at("5")});
    pairing.measure();
    pairing.compare(level0, rawCall);
    pairing.compare(level0, floor0, marks.silent);
    pairing.compare(levelUnset, floorUnset, marks.traced);
    if (!unset.empty())
        pairing.compare(levelUnset, bareUnset, marks.bareWrite);
    pairing.compare(level5, bare5);
}

// Updates of 1 MB over a token that takes its time for every piece, silent.
template <typename Update>
void addPieces(const std::string &name, int rounds, const char *over, double mark,
               const NullToken &token) {
    add(name, rounds, [=](benchmark::State &state) {
        Update update(1 << 20);
        nullToken = token;
        Pairing pairing(state, update.name + " over a token " + over);
        const auto pieces = pairing.add({"raw pieces", repeat([&] { update.raw(); })});
        const auto level0 = pairing.add({"level 0", repeat([&] { update.provider(); })});
        pairing.measure();
        pairing.compare(level0, pieces, mark);
    });
}

template <typename EntryPoint, typename... Arguments>
void addCall(const std::string &name, int rounds, const CallMarks &marks, Arguments... arguments) {
    add(name, rounds, [=](benchmark::State &state) {
        EntryPoint entryPoint(arguments...);
        measureCall(state, entryPoint, marks);
    });
}

} // namespace

void registerCalls(int rounds) {
    addCall<Sign>("sign", rounds, SILENT_AND_TRACED);
    addCall<GenerateRandom>("random", rounds, TRACED);
    addCall<FindKeypair>("find_keypair", rounds, TRACED);
    addCall<HashUpdate>("hash_update/1KB", rounds, SILENT_AND_TRACED, 1 << 10);
    addCall<HashUpdate>("hash_update/64KB", rounds, {}, 1 << 16);
    addCall<HashUpdate>("hash_update/1MB", rounds, {.silent = 1.10}, 1 << 20);
    addCall<CipherUpdate>("cipher_update/1KB", rounds, {}, 1 << 10);
    addCall<CipherUpdate>("cipher_update/64KB", rounds, {}, 1 << 16);
    addCall<CipherUpdate>("cipher_update/1MB", rounds, {}, 1 << 20);
    addCall<GetAllDevices>("discovery/1", rounds, {}, 1);
    addCall<GetAllDevices>("discovery/32", rounds, {}, 32);
    addPieces<HashUpdate>("pieces/hash", rounds, "that takes 0.5 us a piece", 1.02,
                          {.digestPiece = std::chrono::nanoseconds(500)});
    addPieces<CipherUpdate>("pieces/cipher", rounds, "of 100 MB/s", 1.10,
                            {.cipherByte = std::chrono::nanoseconds(10)});
}

} // namespace tembra::bench
