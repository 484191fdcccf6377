// What a whole log amounts to.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "tembrakey/trace/call.h"

namespace tembra::trace {

struct EntryPointCount {
    std::uint64_t calls = 0;
    std::uint64_t failed = 0;
    std::optional<std::int64_t> longest; // seconds, when a duration is known
};

struct Summary {
    std::uint64_t lines = 0;
    std::uint64_t foreignLines = 0;
    std::uint64_t calls = 0; // inner ones too
    std::uint64_t failedCalls = 0;
    std::uint64_t lostCalls = 0;
    std::uint64_t warnedCalls = 0; // with warnings, but no errors
    bool hasDurations = false;     // at least one call has its entry and exit lines
    std::set<std::int64_t> threads;
    bool moreThreads = false; // there are more than the set holds
    std::optional<std::int64_t> begin, end;
    std::map<std::string, EntryPointCount> entryPoints; // only those of the provider

    void count(const Line &line);
    // The call and those inside it.
    void count(const Call &call);
};

} // namespace tembra::trace
