// A fault plan: which calls are answered with which code. The text form is described in
// tembra_devkit_faults.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tembra::door {

// What a call counts as: its number among the calls of its function, and among all calls.
struct CallNumbers {
    std::uint64_t ofFunction = 0;
    std::uint64_t ofAll = 0;
};

class Plan {
public:
    // Reads a text; empty when an entry is bad, which then stands in badEntry.
    static std::optional<Plan> parse(std::string_view text, std::string &badEntry);

    bool isEmpty() const { return m_entries.empty(); }

    // The code that the plan has for this call of the function at this place of functionNames.
    std::optional<std::uint32_t> faultFor(std::size_t function, CallNumbers numbers) const;

private:
    struct Entry {
        std::optional<std::size_t> function; // none: every function
        std::uint64_t first = 1;
        std::uint64_t last = 1;
        std::uint32_t code = 0;
    };
    static std::optional<Entry> parseEntry(std::string_view text);
    static bool parseWhich(std::string_view text, Entry &entry);

    std::vector<Entry> m_entries;
};

} // namespace tembra::door
