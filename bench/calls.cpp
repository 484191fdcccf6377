// One entry point at a time, at each level of the trace and next to what it cannot do without.
#include "benchmarks.h"
#include "entry_points.h"

#include <mutex>

namespace tembra::bench {

namespace {

using namespace std::chrono_literals;

// A function of its own, so that it is called as often as the provider calls its own.
[[gnu::noinline]] int lookUpLevel() {
    const char *value = std::getenv(LEVEL_VARIABLE);
    return value ? std::atoi(value) : 0;
}

template <typename EntryPoint>
std::vector<std::string> linesOf(const char *level, EntryPoint &entryPoint) {
    TraceFile::instance().begin(level);
    entryPoint.provider();
    return TraceFile::instance().lines();
}

// The least that a provider with this trace can do: look up the level in each trace statement, take
// the lock where the entry point does, and make the raw call.
template <typename EntryPoint>
auto floorOf(EntryPoint &entryPoint) {
    const std::size_t statements = linesOf("5", entryPoint).size();
    return [&entryPoint, statements] {
        static std::recursive_mutex mutex; // as recursive as the provider's own
        for (std::size_t i = 0; i < statements; ++i)
            benchmark::DoNotOptimize(lookUpLevel());
        std::unique_lock lock(mutex, std::defer_lock);
        if (entryPoint.locks)
            lock.lock();
        entryPoint.raw();
    };
}

// Writing the lines of a call at level information, which are ready.
template <typename EntryPoint>
auto writesOf(EntryPoint &entryPoint) {
    return [lines = linesOf(nullptr, entryPoint)] {
        for (const std::string &line : lines)
            TraceFile::instance().write(line);
    };
}

// level is the trace level of the timed calls; prepare(entryPoint) returns what is timed.
template <typename EntryPoint, typename Prepare, typename... Arguments>
void add(const std::string &name, const char *level, Prepare prepare, Arguments... arguments) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
        EntryPoint entryPoint(arguments...);
        const auto call = prepare(entryPoint);
        TraceFile::instance().begin(level);
        for (auto _ : state)
            call();
    });
}

template <typename EntryPoint, typename... Arguments>
void addCall(const std::string &name, Arguments... arguments) {
    const auto raw = [](EntryPoint &call) { return [&call] { call.raw(); }; };
    const auto provider = [](EntryPoint &call) { return [&call] { call.provider(); }; };
    add<EntryPoint>(name + "/raw", "0", raw, arguments...);
    add<EntryPoint>(name + "/floor", "0", floorOf<EntryPoint>, arguments...);
    add<EntryPoint>(name + "/silent", "0", provider, arguments...);
    add<EntryPoint>(name + "/write", nullptr, writesOf<EntryPoint>, arguments...);
    add<EntryPoint>(name + "/information", nullptr, provider, arguments...);
    add<EntryPoint>(name + "/verbose", "5", provider, arguments...);
}

// 1 MB over a token that takes some time for each piece.
template <typename Update>
void addPieces(const std::string &name, const NullToken &token) {
    const auto slow = [token](auto call) {
        nullToken = token;
        return call;
    };
    const auto raw = [slow](Update &update) { return slow([&update] { update.raw(); }); };
    const auto provider = [slow](Update &update) { return slow([&update] { update.provider(); }); };
    add<Update>(name + "/raw", "0", raw, 1 << 20);
    add<Update>(name + "/silent", "0", provider, 1 << 20);
}

} // namespace

void registerCalls() {
    addCall<Sign>("sign");
    addCall<GenerateRandom>("random");
    addCall<FindKeypair>("find_keypair");
    addCall<HashUpdate>("hash_update/1KB", 1 << 10);
    addCall<HashUpdate>("hash_update/64KB", 1 << 16);
    addCall<HashUpdate>("hash_update/1MB", 1 << 20);
    addCall<CipherUpdate>("cipher_update/1KB", 1 << 10);
    addCall<CipherUpdate>("cipher_update/64KB", 1 << 16);
    addCall<CipherUpdate>("cipher_update/1MB", 1 << 20);
    addCall<GetAllDevices>("discovery/1", 1);
    addCall<GetAllDevices>("discovery/32", 32);
    addPieces<HashUpdate>("hash_update/1MB/token_0.5us_per_piece", {.digestPiece = 500ns});
    addPieces<CipherUpdate>("cipher_update/1MB/token_100MBps", {.cipherByte = 10ns});
}

} // namespace tembra::bench
