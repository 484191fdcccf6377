// The fault plan, the journal and the counters of one library. Until they are set, plan and journal
// come from TEMBRA_SOFT_TOKEN_FAULTS and TEMBRA_SOFT_TOKEN_JOURNAL. All functions are thread-safe.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tembra::fault_injection {

struct Arrival {
    std::uint64_t sequence = 0;
    std::optional<std::uint32_t> fault;
    bool journaled = false;
};

// Counts a call and looks it up in the plan. Takes no lock unless there is a plan.
Arrival arrive(std::string_view function);
void writeToJournal(std::string_view line);

// The functions of tembra_devkit_faults.h, once for both libraries.
int setFaults(const char *plan) noexcept;  // 1, or 0 for a bad plan; counters restart at 0
int setJournal(const char *path) noexcept; // 1, or 0 if the file cannot be opened
unsigned long long callCount(const char *function) noexcept; // null: of all functions

} // namespace tembra::fault_injection
