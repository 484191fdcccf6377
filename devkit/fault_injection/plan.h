// A fault plan: which calls return which code. tembra_devkit_faults.h describes its text form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tembra::fault_injection {

// The numbers of a call among the calls of its function and among all calls, from 1.
struct CallNumbers {
    std::uint64_t ofFunction = 0;
    std::uint64_t ofAll = 0;
};

class Plan {
public:
    // Empty if an entry is bad; badEntry receives it.
    static std::optional<Plan> parse(std::string_view text, std::string &badEntry);

    bool isEmpty() const { return m_entries.empty(); }

    // The planned code for a call of the function with this index in FUNCTION_NAMES.
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

} // namespace tembra::fault_injection
